// SPDX-License-Identifier: MIT
#include "cli/options.h"

#include <QCommandLineParser>
#include <QFile>
#include <cstdio>

#include "cli/archive_format.h"
#include "foundation/local_path.h"
#include "toolkit/date_formatters.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

QString formatNames() {
    QStringList names;
    for (const Format& format : formats())
        names.append(QString::fromLatin1(format.name));
    return names.join(u", "_s);
}

/// A line for each.
QString describedFormats() {
    QString lines;
    for (const Format& format : formats()) {
        lines += u"                          "_s +
                 QString::fromLatin1(format.name).leftJustified(10) +
                 QString::fromLatin1(format.description) + u'\n';
    }
    lines += u"                          "_s +
             QString::fromLatin1(archiveFormat.name).leftJustified(10) +
             QString::fromLatin1(archiveFormat.description) + u'\n';
    return lines;
}

QString helpText() {
    return u"Usage: vell-export [OPTION]… [--] FILE|FOLDER…\n"
           "  or:  vell-export [OPTION]… --files0-from LIST\n"
           "  or:  vell-export --check FILE|FOLDER…\n"
           "Writes transcripts, also all those in folders, in another format; \"-\" is standard\n"
           "input.\n"
           "\n"
           "  -f, --format NAME     the format (default: %1):\n"_s.arg(
               QString::fromLatin1(formats()[0].name)) +
           describedFormats() +
           u"  -o, --output NAME     where to write: a file, a folder that exists or ends with\n"
           "                        \"/\", a pipe or a device; \"-\" is standard output, the\n"
           "                        default\n"
           "  -d, --output-dir DIR  write into this folder, which is created if necessary\n"
           "      --force           replace existing files\n"
           "      --update          replace older ones, and skip what is newer than its\n"
           "                        transcript: an interrupted run goes on\n"
           "      --merge           write a document for each person and year, not for each file\n"
           "      --index           with HTML, also write index.html, which leads to all pages by\n"
           "                        person and month\n"
           "      --report FILE     write what became of each file to FILE, as JSON\n"
           "      --expand          also write documents that are far larger than their files\n"
           "      --byte-order-mark  begin CSV with a mark, which some spreadsheets need\n"
           "      --pictures HOW    pictures in HTML: embed (the default), folder (beside the "
           "page)\n"
           "                        or none\n"
           "      --attachments DIR  write pictures and files into folders below this one, which\n"
           "                        documents refer to\n"
           "      --files0-from LIST  export the files named in LIST, each name terminated by\n"
           "                        a null byte; \"-\" is standard input\n"
           "      --check           write nothing; print a verdict on each file: fine, damaged,\n"
           "                        not-a-transcript, duplicate or unreadable\n"
           "      --contacts FILE   take the names of people from these vCards; may be repeated\n"
           "      --time-zone ZONE  time zone of days and times, such as Europe/Berlin\n"
           "                        (default: yours)\n"
           "      --locale LOCALE   language and style of dates, such as en_GB (default: yours)\n"
           "      --recover         of a damaged file, export the messages that can be read;\n"
           "                        the document says so, and what is missing where\n"
           "      --load-log        for a file that can't be read, print what was tried\n"
           "  -v, --verbose         print how many messages each document has\n"
           "  -q, --quiet           report failures only\n"
           "      --version         print the version\n"
           "  -h, --help            print this help\n"
           "\n"
           "In a folder, documents are named after their files, in the folders of those that were\n"
           "found. Exit status: 0 success, 1 a file couldn't be read or written, 2 wrong usage,\n"
           "3 some were recovered in part; after --check the worst of 3 a duplicate, 4 not a\n"
           "transcript, 5 damaged, 1 unreadable.\n"_s;
}

struct Arguments {
    const QCommandLineOption format{{u"f"_s, u"format"_s}, {}, u"NAME"_s};
    const QCommandLineOption output{{u"o"_s, u"output"_s}, {}, u"NAME"_s};
    const QCommandLineOption outputDir{{u"d"_s, u"output-dir"_s}, {}, u"DIR"_s};
    const QCommandLineOption force{u"force"_s};
    const QCommandLineOption update{u"update"_s};
    const QCommandLineOption merge{u"merge"_s};
    const QCommandLineOption index{u"index"_s};
    const QCommandLineOption report{u"report"_s, {}, u"FILE"_s};
    const QCommandLineOption expand{u"expand"_s};
    const QCommandLineOption byteOrderMark{u"byte-order-mark"_s};
    const QCommandLineOption pictures{u"pictures"_s, {}, u"HOW"_s};
    const QCommandLineOption attachments{u"attachments"_s, {}, u"DIR"_s};
    const QCommandLineOption files0From{u"files0-from"_s, {}, u"LIST"_s};
    const QCommandLineOption check{u"check"_s};
    const QCommandLineOption contacts{u"contacts"_s, {}, u"FILE"_s};
    const QCommandLineOption timeZone{u"time-zone"_s, {}, u"ZONE"_s};
    const QCommandLineOption locale{u"locale"_s, {}, u"LOCALE"_s};
    const QCommandLineOption recover{u"recover"_s};
    const QCommandLineOption loadLog{u"load-log"_s};
    const QCommandLineOption verbose{{u"v"_s, u"verbose"_s}};
    const QCommandLineOption quiet{{u"q"_s, u"quiet"_s}};
    const QCommandLineOption version{u"version"_s};
    const QCommandLineOption help{{u"h"_s, u"help"_s}};
    QCommandLineParser parser;

    explicit Arguments(const QStringList& arguments) {
        parser.addOptions({format,     output,  outputDir, force,         update,   merge,
                           index,      report,  expand,    byteOrderMark, pictures, attachments,
                           files0From, check,   contacts,  timeZone,      locale,   recover,
                           loadLog,    verbose, quiet,     version,       help});
        // The parser takes its first argument for the program's name.
        if (!parser.parse(QStringList(u"vell-export"_s) + arguments))
            throw UsageError{parser.errorText()};
    }
};

const Format* chosenFormat(const Arguments& given) {
    const QString name = given.parser.isSet(given.format) ? given.parser.value(given.format)
                                                          : QString::fromLatin1(formats()[0].name);
    if (name == QLatin1StringView(archiveFormat.name)) return &archiveFormat;
    const Format* chosen = findFormat(name);
    if (!chosen)
        throw UsageError{u"unknown format: "_s + name + u" (known: "_s + formatNames() + u')'};
    return chosen;
}

Pictures chosenPictures(const Arguments& given) {
    const QString how = given.parser.value(given.pictures);
    const bool isGiven = given.parser.isSet(given.pictures);
    if (how == u"none") return Pictures::none;
    if (how == u"folder" || (!isGiven && given.parser.isSet(given.attachments)))
        return Pictures::folder;
    if (how == u"embed" || !isGiven) return Pictures::embed;
    throw UsageError{
        u"pictures are embedded, in a folder or left out: --pictures embed|folder|none"_s};
}

foundation::Calendar chosenCalendar(const Arguments& given) {
    if (!given.parser.isSet(given.timeZone)) return foundation::Calendar::current();
    const QString zone = given.parser.value(given.timeZone);
    if (foundation::Calendar::isRule(zone.toUtf8())) {
        qputenv("TZ", zone.toUtf8());
        return foundation::Calendar::current();
    }
    auto calendar = foundation::Calendar::named(zone.toUtf8());
    if (!calendar || !isKnownTimeZone(calendar->timeZone().id()))
        throw UsageError{u"unknown time zone: "_s + zone};
    return *std::move(calendar);
}

QByteArray chosenDateLocale(const Arguments& given) {
    if (!given.parser.isSet(given.locale)) return environmentDateLocale();
    const QString locale = given.parser.value(given.locale);
    if (!isKnownLocale(locale.toUtf8())) throw UsageError{u"unknown locale: "_s + locale};
    return locale.toUtf8();
}

QStringList listedFiles(const QString& list) {
    QFile file;
    if (list == u"-" ? !file.open(stdin, QIODevice::ReadOnly)
                     : !foundation::openForReading(file, list))
        throw UsageError{u"the list of files can't be read: "_s + file.errorString()};
    QByteArray names = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw UsageError{u"the list of files can't be read: "_s + file.errorString()};
    if (names.endsWith('\0')) names.chop(1);
    QStringList result;
    if (names.isEmpty()) return result;
    for (const QByteArray& name : names.split('\0'))
        result.append(foundation::pathFromArgument(name.constData()));
    if (list == u"-" && result.contains(u"-"_s))
        throw UsageError{u"standard input can't be both the list of files and a file"_s};
    return result;
}

QStringList chosenFiles(const Arguments& given) {
    QStringList files = given.parser.positionalArguments();
    if (given.parser.isSet(given.files0From)) {
        if (!files.isEmpty()) throw UsageError{u"files are given as arguments and in a list"_s};
        files = listedFiles(given.parser.value(given.files0From));
    } else if (files.isEmpty()) {
        throw UsageError{u"no file given"_s};
    }
    if (files.contains(QString())) throw UsageError{u"a file has no name"_s};
    return files;
}

void chooseOutput(const Arguments& given, Options& options) {
    const QCommandLineParser& parser = given.parser;
    options.output = u"-"_s;
    if (parser.isSet(given.output) && parser.isSet(given.outputDir))
        throw UsageError{u"--output and --output-dir exclude each other"_s};
    if (parser.isSet(given.output)) options.output = parser.value(given.output);
    if (parser.isSet(given.outputDir)) options.output = parser.value(given.outputDir);
    if (options.output.isEmpty()) throw UsageError{u"the output has no name"_s};
    options.outputIsFolder = parser.isSet(given.outputDir) || options.output.endsWith(u'/');
    if (options.update && options.output == u"-")
        throw UsageError{u"--update needs files to compare with: --output or --output-dir"_s};
    if (options.pictures == Pictures::folder && options.attachments.isEmpty() &&
        options.output == u"-")
        throw UsageError{u"pictures in a folder need one: --output-dir or --attachments"_s};
    if ((options.merges || options.index) && !parser.isSet(given.outputDir))
        throw UsageError{u"--merge and --index need a folder: --output-dir"_s};
    if (options.format == &archiveFormat &&
        (options.merges || options.index || options.recovers || !options.attachments.isEmpty() ||
         options.pictures == Pictures::folder))
        throw UsageError{
            u"--format archive shows files as they are, without --merge, --index, --recover and "
            "--attachments"_s};
    if (options.merges && options.update)
        throw UsageError{u"--merge writes everything anew: --force, not --update"_s};
    if (options.index && options.format->name != "html"_ba)
        throw UsageError{u"--index leads to pages: --format html"_s};
    if (parser.isSet(given.attachments) && options.attachments.isEmpty())
        throw UsageError{u"the folder for attachments has no name"_s};
    if (parser.isSet(given.report) && options.report.isEmpty())
        throw UsageError{u"the report has no name"_s};
}

/// What only documents have.
void refuseOutput(const Arguments& given) {
    for (const auto* option :
         {&given.format, &given.output, &given.outputDir, &given.force, &given.update,
          &given.report, &given.attachments, &given.merge, &given.index}) {
        if (given.parser.isSet(*option))
            throw UsageError{u"--check writes no documents, so --%1 means nothing"_s.arg(
                option->names().last())};
    }
}

}  // namespace

Options parseOptions(const QStringList& arguments) {
    const Arguments given(arguments);
    const QCommandLineParser& parser = given.parser;
    if (parser.isSet(given.help)) throw Information{helpText()};
    if (parser.isSet(given.version)) throw Information{u"vell-export " VELL_VERSION "\n"_s};
    Options result{
        .checks = parser.isSet(given.check),
        .format = chosenFormat(given),
        .files = {},
        .output = {},
        .outputIsFolder = false,
        .force = parser.isSet(given.force),
        .update = parser.isSet(given.update),
        .merges = parser.isSet(given.merge),
        .index = parser.isSet(given.index),
        .report = parser.value(given.report),
        .expand = parser.isSet(given.expand),
        .byteOrderMark = parser.isSet(given.byteOrderMark),
        .pictures = chosenPictures(given),
        .attachments = parser.value(given.attachments),
        .verbose = parser.isSet(given.verbose),
        .quiet = parser.isSet(given.quiet),
        .printsLoadLog = parser.isSet(given.loadLog),
        .recovers = parser.isSet(given.recover),
        .contacts = parser.values(given.contacts),
        .calendar = chosenCalendar(given),
        .dateLocale = chosenDateLocale(given),
    };
    chooseOutput(given, result);
    if (result.checks) refuseOutput(given);
    result.files = chosenFiles(given);
    return result;
}

}  // namespace vell
