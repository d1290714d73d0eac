// SPDX-License-Identifier: MIT
#include "cli/exporter.h"

#include <unistd.h>

#include <QFileInfo>
#include <cstdio>
#include <memory>
#include <new>

#include "export/expansion.h"
#include "foundation/error.h"
#include "foundation/local_path.h"
#include "foundation/print.h"
#include "identity/vcard/vcard_source.h"
#include "toolkit/console.h"
#include "transcript/load_log.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::localPath;

namespace {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
constexpr qsizetype manyFiles = 10;  // from here on progress is shown

void writeError(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

/// On one line, without characters that move a terminal's cursor.
QString oneLine(QString text) {
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control) c = u' ';
    }
    return text;
}

/// The reason of a failure in plain words.
QString reasonOf(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error)) return u"there is not enough memory"_s;
    const auto* archive = dynamic_cast<const foundation::Error*>(&error);
    if (!archive) return QString::fromUtf8(error.what());
    const QString text = archive->debugDescription().isEmpty() ? archive->description()
                                                               : archive->debugDescription();
    const bool isUnreadable =
        archive->code() == static_cast<qint64>(foundation::CoderErrorCode::readCorrupt) ||
        archive->code() == static_cast<qint64>(foundation::CoderErrorCode::valueNotFound);
    if (!isUnreadable) return text;
    // The name of the platform's function in front means nothing to users.
    const auto prefix = text.startsWith(u"*** -[") ? text.indexOf(u"]: ") : -1;
    return u"not a transcript, or damaged: "_s + (prefix < 0 ? text : text.mid(prefix + 3));
}

ContactsStore::Table contactsOf(const Options& options) {
    try {
        return readContactTable(options.contacts, console::defaultConsole());
    } catch (const ContactsError& error) {
        throw UsageError{u"the contacts can't be read: "_s + error.debugDescription()};
    }
}

int printInformation(const Information& information) {
    try {
        Sink sink(STDOUT_FILENO);
        sink.write(information.text.toUtf8());
        sink.flush();
        return exitSuccess;
    } catch (const WriteError& error) {
        writeError(u"vell-export: standard output: "_s + error.reason + u'\n');
        return exitFailure;
    }
}

/// A file's name in messages.
QString displayName(const QString& file) {
    return file == u"-" ? u"stdin"_s : file;
}

}  // namespace

Exporter::Exporter(const Options& options)
    : options_(options),
      contacts_(contactsOf(options)),
      context_(options.calendar, options.dateLocale, contacts_),
      output_(options) {
    const bool sharesTerminal = output_.isStream() && isatty(STDOUT_FILENO) != 0;
    showsProgress_ = !options.quiet && options.files.size() >= manyFiles && !sharesTerminal &&
                     isatty(STDERR_FILENO) != 0;
    foundation::setPrintFunction([this](QStringView line) { printDiagnostic(line); });
}

Exporter::~Exporter() {
    foundation::setPrintFunction({});
}

bool Exporter::run() {
    bool allDone = true;
    for (qsizetype i = 0; i < options_.files.size() && !output_.isBroken(); ++i) {
        file_ = options_.files[i];
        showProgress(i);
        if (!exportOne()) allDone = false;
    }
    clearProgress();
    return allDone;
}

bool Exporter::exportOne() {
    const auto log = tesselLoadLog();
    Input input;
    std::optional<TesselChatLog> chatLog;
    QString reason;
    try {
        input = readInput(file_, log.get());
        chatLog.emplace(
            TesselChatLog::fromData(input.bytes, input.date, options_.calendar, log.get()));
    } catch (const ReadError& error) {
        reason = error.reason;
    } catch (const std::exception& error) {
        const bool wasRead = !input.name.isEmpty();
        reason = wasRead && input.bytes.isEmpty() ? u"it is empty"_s : reasonOf(error);
    }
    if (!chatLog) {
        report(reason);
        if (log && options_.printsLoadLog) writeError(log->grabLog());
        return false;
    }
    try {
        write(input, *chatLog);
        return true;
    } catch (const WriteError& error) {
        report(error.reason);
    } catch (const std::exception& error) {
        report(reasonOf(error));
    }
    return false;
}

void Exporter::write(const Input& input, const TesselChatLog& log) {
    const auto writeTo = [&](const ByteSink& sink) { options_.format->write(log, context_, sink); };
    const quint64 limit = exportLimit(input.bytes.size());
    if (!options_.expand &&
        expandsBeyond(limit, log, contacts_, options_.format->readsAttachments, writeTo)) {
        throw WriteError{
            u"as %1 it takes more than %2 MB, out of all proportion to the file "
            "(--expand allows it)"_s.arg(QString::fromLatin1(options_.format->name))
                .arg(limit / 1'000'000)};
    }
    output_.write(
        input, [&](Sink& sink) { writeTo([&sink](QByteArrayView bytes) { sink.write(bytes); }); });
}

void Exporter::report(const QString& reason) const {
    clearProgress();
    writeError(oneLine(u"vell-export: "_s + displayName(file_) + u": "_s + reason.simplified()) +
               u'\n');
}

/// With several files each line begins with the file's name.
void Exporter::printDiagnostic(QStringView line) const {
    if (options_.quiet) return;
    clearProgress();
    const QString about =
        options_.files.size() > 1 ? oneLine(displayName(file_)) + u": "_s : QString();
    writeError(about + line.toString() + u'\n');
}

void Exporter::showProgress(qsizetype done) const {
    if (!showsProgress_) return;
    const QString name = oneLine(QFileInfo(localPath(file_)).fileName()).left(50);
    writeError(u"\r\033[K%1 of %2: "_s.arg(done + 1).arg(options_.files.size()) + name);
}

void Exporter::clearProgress() const {
    if (showsProgress_) writeError(u"\r\033[K"_s);
}

int runExport(const QStringList& arguments) {
    // Standard output is for documents.
    foundation::setPrintTarget(stderr);
    console::setDefaultConsole(std::make_shared<Console2<>>(
        FileOutputStream(stderr), FileOutputStream(stderr), LogLevel::defaultLevel()));
    try {
        const Options options = parseOptions(arguments);
        return Exporter(options).run() ? exitSuccess : exitFailure;
    } catch (const Information& information) {
        return printInformation(information);
    } catch (const WriteError& error) {
        writeError(u"vell-export: "_s + oneLine(error.reason) + u'\n');
        return exitFailure;
    } catch (const UsageError& error) {
        writeError(u"vell-export: "_s + oneLine(error.reason) +
                   u"\nTry 'vell-export --help' for more.\n"_s);
        return exitUsage;
    }
}

}  // namespace vell
