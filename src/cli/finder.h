#pragma once
// SPDX-License-Identifier: MIT
//
// vell-find: brings the index up to date, searches in it and prints what it finds; without a usable
// index it reads the files.

#include <QStringList>

namespace vell {

/// Runs the program: parses, searches, reports. Returns the exit status.
int runFind(const QStringList& arguments);

}  // namespace vell
