#pragma once
// SPDX-License-Identifier: MIT
//
// What vell-export was asked to do, from its arguments.

#include <QString>
#include <QStringList>

#include "cli/format.h"
#include "foundation/calendar.h"

namespace vell {

struct Options {
    const Format* format = nullptr;  ///< never null
    QStringList files;               ///< "-" is standard input
    QString output;                  ///< "-" is standard output
    bool outputIsFolder = false;     ///< by how it was named, whether or not it is there
    bool force = false;
    bool expand = false;  ///< also what grows out of all proportion
    bool quiet = false;
    bool printsLoadLog = false;
    QStringList contacts;  ///< vCard files
    foundation::Calendar calendar;
    QString locale;  ///< empty: the user's own
};

/// Arguments that make no sense; says why.
struct UsageError {
    QString reason;
};

/// A text to print instead of doing anything: help or version.
struct Information {
    QString text;
};

/// Reads the arguments, the program's name not among them, and the list of files that they name.
/// Throws UsageError or Information.
[[nodiscard]] Options parseOptions(const QStringList& arguments);

}  // namespace vell
