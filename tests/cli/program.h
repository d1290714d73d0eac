#pragma once
// SPDX-License-Identifier: MIT
//
// Runs vell-export inside a test: arguments in, exit status and both outputs out.

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

QByteArray readFile(const QString& path);
void writeFile(const QString& path, const QByteArray& bytes);

}  // namespace vell::test
