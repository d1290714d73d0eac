#pragma once
// SPDX-License-Identifier: MIT
//
// Runs vell-export as a process: arguments in, exit status and both outputs out.

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vell::test {

struct Result {
    int status = 0;
    QByteArray output;
    QString error;
};

/// Runs the program with these arguments and this standard input.
Result run(const QStringList& arguments, const QByteArray& input = {});
/// Runs a script of the shell in a folder; there "vell-export" is the program.
Result shell(const QByteArray& script, const QString& folder);

QByteArray readFile(const QString& path);
void writeFile(const QString& path, const QByteArray& bytes);

}  // namespace vell::test
