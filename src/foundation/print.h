#pragma once
// SPDX-License-Identifier: MIT
//
// The plain print: single diagnostic lines that belong to no logger. The window program leaves it
// on standard output; a program whose standard output is a document points it elsewhere first.
// Any thread may print; a line is written whole.

#include <QStringView>
#include <cstdio>
#include <functional>

namespace foundation {

/// Writes the line as UTF-8, followed by one line feed, to the print target.
void print(QStringView line);

/// Sends all further lines to a C stream (not owned; standard output at program start).
void setPrintTarget(std::FILE* stream);

/// Hands all further lines to a function, without the line feed; an empty one restores the stream.
void setPrintFunction(std::function<void(QStringView)> function);

}  // namespace foundation
