// SPDX-License-Identifier: MIT
//
// vell-export: transcripts as text, without a window.
#include <QFile>
#include <QStringList>
#include <cstdio>

#include "cli/exporter.h"
#include "foundation/local_path.h"

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(foundation::pathFromArgument(argv[i]));
    QFile input;
    QFile output;
    if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(stdout, QIODevice::WriteOnly)) {
        std::fputs("vell-export: the standard streams are closed\n", stderr);
        return 1;
    }
    const int status = vell::runExport(arguments, {input, output, stderr});
    if (!output.flush() || std::fflush(stdout) != 0 || output.error() != QFileDevice::NoError) {
        std::fprintf(stderr, "vell-export: %s\n", qPrintable(output.errorString()));
        return 1;
    }
    return status;
}
