// SPDX-License-Identifier: MIT
#include "cli/exporter.h"

#include <unistd.h>

#include <QFileInfo>
#include <memory>
#include <new>

#include "export/expansion.h"
#include "export/message.h"
#include "foundation/local_path.h"
#include "foundation/plain_reason.h"
#include "foundation/print.h"
#include "toolkit/console.h"
#include "transcript/load_log.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::localPath;

namespace {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
constexpr quint64 mostBytesPerUnit = 6;  // of a name, escaped
constexpr qsizetype manyFiles = 10;      // from here on progress is shown

int printInformation(const Information& information) {
    try {
        writeOutput(information.text);
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
      contacts_(contactsIn(options.contacts)),
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
        reason =
            wasRead && input.bytes.isEmpty() ? u"it is empty"_s : foundation::plainReason(error);
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
        report(foundation::plainReason(error));
    }
    return false;
}

void Exporter::write(const Input& input, const TesselChatLog& log) {
    const DocumentSource source{.log = log,
                                .context = context_,
                                .file = input.name,
                                .followsAnother = output_.followsAnother(),
                                .hasByteOrderMark = options_.byteOrderMark,
                                .hasPictures = options_.pictures != Pictures::none};
    const ExpansionExtras extras{
        .perEvent = static_cast<quint64>(input.name.size()) * mostBytesPerUnit,
        .hasPictures = options_.format->showsPictures && options_.pictures == Pictures::embed};
    const auto writeTo = [&](const ByteSink& sink) { return options_.format->write(source, sink); };
    const quint64 limit = exportLimit(input.bytes.size());
    const auto isTooLarge = [&] {
        return (options_.format->readsAttachments && attachmentsExceed(limit, log)) ||
               expandsBeyond(limit, ExpansionBound(log, extras), contacts_, writeTo);
    };
    if (!options_.expand && isTooLarge()) {
        throw WriteError{
            u"as %1 it takes more than %2 MB, out of all proportion to the file "
            "(--expand allows it)"_s.arg(QString::fromLatin1(options_.format->name))
                .arg(limit / 1'000'000)};
    }
    const qint64 all = messageCount(log);
    output_.write(input, [&](Sink& sink) {
        const qint64 written = writeTo([&sink](QByteArrayView bytes) { sink.write(bytes); });
        if (written != all)
            throw WriteError{u"only %1 of %2 messages could be written"_s.arg(written).arg(all)};
    });
    if (options_.verbose) report(all == 1 ? u"1 message"_s : u"%1 messages"_s.arg(all));
}

/// Says something about the file at hand.
void Exporter::report(const QString& text) const {
    clearProgress();
    writeError(oneLine(u"vell-export: "_s + displayName(file_) + u": "_s + text.simplified()) +
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
