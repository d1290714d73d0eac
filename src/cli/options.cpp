// SPDX-License-Identifier: MIT
#include "cli/options.h"

#include <QCommandLineParser>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

QString formatNames() {
    QStringList names;
    for (const Format& format : formats())
        names.append(QString::fromLatin1(format.name));
    return names.join(u", "_s);
}

QString helpText() {
    return u"Usage: vell-export [OPTION]… [--] FILE…\n"
           "Writes transcripts in another format; \"-\" is standard input.\n"
           "\n"
           "  --format NAME       %1 (default: %2)\n"
           "  --output FILE|DIR   where to write; several files need a folder, and are\n"
           "                      named after themselves there\n"
           "  --force             replace files that exist\n"
           "  --contacts FILE     name people from these vCards; may be given several times\n"
           "  --time-zone ZONE    whose days and hours to tell, e.g. Europe/Berlin;\n"
           "                      without it your own\n"
           "  --locale LOCALE     how to write dates for people, e.g. en_GB; without it\n"
           "                      your own\n"
           "  --load-log          print what was tried for a file that can't be read\n"
           "  --version           print the version\n"
           "  --help              print this text\n"
           "\n"
           "One file goes to standard output. Exit status: 0 all done, 1 some file couldn't be\n"
           "read or written, 2 wrong usage.\n"_s.arg(formatNames(),
                                                     QString::fromLatin1(formats()[0].name));
}

foundation::Calendar calendarFor(const QString& zone) {
    auto calendar = foundation::Calendar::named(zone.toUtf8());
    if (!calendar) throw UsageError{u"unknown time zone: "_s + zone};
    return *std::move(calendar);
}

}  // namespace

Options parseOptions(const QStringList& arguments) {
    const QCommandLineOption format(u"format"_s, {}, u"NAME"_s);
    const QCommandLineOption output(u"output"_s, {}, u"FILE|DIR"_s);
    const QCommandLineOption force(u"force"_s);
    const QCommandLineOption contacts(u"contacts"_s, {}, u"FILE"_s);
    const QCommandLineOption timeZone(u"time-zone"_s, {}, u"ZONE"_s);
    const QCommandLineOption locale(u"locale"_s, {}, u"LOCALE"_s);
    const QCommandLineOption loadLog(u"load-log"_s);
    const QCommandLineOption version(u"version"_s);
    const QCommandLineOption help(QStringList{u"help"_s, u"h"_s});
    QCommandLineParser parser;
    parser.addOptions({format, output, force, contacts, timeZone, locale, loadLog, version, help});
    // The parser takes its first argument for the program's name.
    if (!parser.parse(QStringList(u"vell-export"_s) + arguments))
        throw UsageError{parser.errorText()};
    if (parser.isSet(help)) throw Information{helpText()};
    if (parser.isSet(version)) throw Information{u"vell-export " VELL_VERSION "\n"_s};

    const QString name =
        parser.isSet(format) ? parser.value(format) : QString::fromLatin1(formats()[0].name);
    const Format* chosen = findFormat(name);
    if (!chosen)
        throw UsageError{u"unknown format: "_s + name + u" (known: "_s + formatNames() + u')'};
    Options result{
        .format = chosen,
        .files = parser.positionalArguments(),
        .output = std::nullopt,
        .force = parser.isSet(force),
        .printsLoadLog = parser.isSet(loadLog),
        .contacts = parser.values(contacts),
        .calendar = parser.isSet(timeZone) ? calendarFor(parser.value(timeZone))
                                           : foundation::Calendar::current(),
        .locale = parser.value(locale),
    };
    if (parser.isSet(output)) result.output = parser.value(output);
    if (result.files.isEmpty()) throw UsageError{u"no file given"_s};
    if (result.files.contains(QString())) throw UsageError{u"a file without a name"_s};
    if (result.output && result.output->isEmpty()) throw UsageError{u"an output without a name"_s};
    if (result.files.size() > 1 && !result.output)
        throw UsageError{u"several files need --output DIR"_s};
    return result;
}

}  // namespace vell
