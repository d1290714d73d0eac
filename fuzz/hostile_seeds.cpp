// SPDX-License-Identifier: MIT
//
// hostile_seeds FOLDER: writes small files that describe far more than they store, to start from.
#include <QDir>
#include <QFile>
#include <cstdio>

#include "writers/hostile/hostile_files.h"

int main(int argc, char** argv) {
    constexpr qsizetype size = 4000;
    const QDir folder(argc == 2 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (argc != 2 || !folder.mkpath(QStringLiteral("."))) {
        std::fputs("usage: hostile_seeds FOLDER\n", stderr);
        return 2;
    }
    for (const writers::HostileFile& hostile : writers::hostileFiles()) {
        QFile file(folder.filePath(QString::fromUtf8(hostile.name)));
        const QByteArray bytes = hostile.make(size);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
            !file.flush()) {
            std::fprintf(stderr, "%s: %s\n", hostile.name, qUtf8Printable(file.errorString()));
            return 1;
        }
    }
    return 0;
}
