// SPDX-License-Identifier: MIT
#include "cli/program.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <cstdio>

#include "cli/exporter.h"
#include "foundation/print.h"

namespace vell::test {

Result run(const QStringList& arguments, const QByteArray& input) {
    QBuffer in;
    in.setData(input);
    in.open(QIODevice::ReadOnly);
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    std::FILE* error = std::tmpfile();
    Result result;
    result.status = runExport(arguments, {in, out, error});
    result.output = out.data();
    foundation::setPrintTarget(stdout);
    std::rewind(error);
    char buffer[4096];
    QByteArray text;
    for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, error)) > 0;)
        text.append(buffer, static_cast<qsizetype>(n));
    std::fclose(error);
    result.error = QString::fromUtf8(text);
    return result;
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
