// SPDX-License-Identifier: MIT
//
// vell-export: transcripts as text, without a window.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QStringList>

#include "cli/exporter.h"
#include "foundation/local_path.h"

namespace {

/// Keeps files that we open from becoming a standard stream that the shell has closed. Opened in
/// the wrong direction, so that using it fails as on a closed one.
void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}  // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    signal(SIGXFSZ, SIG_IGN);  // a file beyond the limit is reported like a full disk
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(foundation::pathFromArgument(argv[i]));
    return vell::runExport(arguments);
}
