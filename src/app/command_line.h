#pragma once
// SPDX-License-Identifier: MIT
//
// The command line of the window program.

#include <QString>
#include <QStringList>
#include <optional>

namespace vell {

struct CommandLine {
    QStringList files;  ///< as written
    bool newInstance = false;
    std::optional<QString> renderTarget;  ///< save a picture or a PDF of the first file and exit
    bool isDark = false;                  ///< use the colours of a dark desktop

    /// The text and exit code of a command line that opens no window: help, version, errors.
    struct Reply {
        QString text;
        int exitCode = 0;
    };
    std::optional<Reply> reply;

    /// Reads the arguments, the program's name first. Needs an application object of any kind.
    static CommandLine parse(const QStringList& arguments);
};

/// The absolute path that an argument means: a path, relative to the given folder, or a "file:"
/// address; "-" stays what it is.
[[nodiscard]] QString argumentPath(const QString& argument, const QString& folder);

}  // namespace vell
