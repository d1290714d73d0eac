// SPDX-License-Identifier: MIT
#include "cli/program.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

namespace vell::test {

using namespace Qt::StringLiterals;

namespace {

Result finish(QProcess& process, const QByteArray& input) {
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(-1)) << process.errorString().toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(),
            QString::fromUtf8(process.readAllStandardError())};
}

}  // namespace

Result run(const QStringList& arguments, const QByteArray& input) {
    QProcess process;
    process.start(QStringLiteral(VELL_EXPORT), arguments);
    return finish(process, input);
}

Result shell(const QByteArray& script, const QString& folder) {
    const QString program = QStringLiteral(VELL_EXPORT);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_s, QFileInfo(program).path() + u':' + environment.value(u"PATH"_s));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(u"/bin/sh"_s, {u"-c"_s, QString::fromUtf8(script)});
    return finish(process, {});
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

}  // namespace vell::test
