// SPDX-License-Identifier: MIT
#include "cli/standard_streams.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>

#include "cli/sink.h"
#include "foundation/line_break.h"
#include "foundation/local_path.h"
#include "identity/vcard/vcard_source.h"
#include "toolkit/console.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

/// Opened in the wrong direction, so that using it fails as on a closed one.
void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}  // namespace

QStringList startProgram(int argc, char** argv) {
    occupyStandardStreams();
    signal(SIGXFSZ, SIG_IGN);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(foundation::pathFromArgument(argv[i]));
    return arguments;
}

ContactsStore::Table contactsIn(const QStringList& files) {
    try {
        return readContactTable(files, console::defaultConsole());
    } catch (const ContactsError& error) {
        throw UsageError{u"the contacts can't be read: "_s + error.debugDescription()};
    }
}

void writeError(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

void writeOutput(const QString& text) {
    Sink sink(STDOUT_FILENO);
    sink.write(text.toUtf8());
    sink.flush();
}

QString oneLine(QString text) {
    for (QChar& c : text) {
        const char16_t unit = c.unicode();
        const bool turnsDirection =
            (unit >= 0x202a && unit <= 0x202e) || (unit >= 0x2066 && unit <= 0x2069);
        if (c.category() == QChar::Other_Control || foundation::isLineBreak(unit) || turnsDirection)
            c = u' ';
    }
    return text;
}

}  // namespace vell
