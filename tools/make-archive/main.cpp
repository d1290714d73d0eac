// SPDX-License-Identifier: MIT
//
// make-archive [--overlaps] FOLDER [FILES MESSAGES PICTURES]: see archive.h.
// make-archive --move FOLDER: moves one of a hundred files.
#include <QStringList>
#include <cstdio>
#include <exception>

#include "archive.h"

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    try {
        if (arguments.size() == 2 && arguments[0] == QLatin1String("--move")) {
            archive::moveSome(arguments[1]);
            return 0;
        }
        archive::Sizes sizes;
        const bool hasOverlaps = arguments.removeAll(QStringLiteral("--overlaps")) > 0;
        if (arguments.size() == 4)
            sizes = {arguments[1].toInt(), arguments[2].toInt(), arguments[3].toInt()};
        sizes.hasOverlaps = hasOverlaps;
        if ((arguments.size() != 1 && arguments.size() != 4) || arguments[0].startsWith(u'-') ||
            sizes.files <= 0) {
            std::fprintf(stderr,
                         "usage: make-archive [--overlaps] FOLDER [FILES MESSAGES PICTURES]\n"
                         "       make-archive --move FOLDER\n");
            return 2;
        }
        archive::write(arguments[0], sizes);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make-archive: %s\n", error.what());
        return 1;
    }
}
