// SPDX-License-Identifier: MIT
#include "cli/file_exporter.h"

#include <exception>
#include <memory>
#include <utility>

#include "cli/attachment_writer.h"
#include "cli/standard_streams.h"
#include "export/expansion.h"
#include "export/message.h"
#include "foundation/plain_reason.h"
#include "recovery/recovery.h"
#include "transcript/load_log.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 mostBytesPerUnit = 6;  // of a name, escaped

thread_local FileExporter* current = nullptr;

}  // namespace

QString displayName(const QString& file) {
    return file == u"-" ? u"stdin"_s : file;
}

FileExporter::FileExporter(const Options& options, const ContactsStore& contacts, Output& output,
                           bool isForSeveral)
    : options_(options),
      output_(output),
      isForSeveral_(isForSeveral),
      context_(options.calendar.forgetful(), options.dateLocale, contacts) {}

FileExporter::~FileExporter() {
    if (current == this) current = nullptr;
}

bool FileExporter::addDiagnostic(QStringView line) {
    if (!current) return false;
    if (current->options_.quiet) return true;
    ExportedFile& file = current->file_;
    if (current->isForSeveral_) file.diagnostics += oneLine(displayName(file.job.file)) + u": "_s;
    file.diagnostics += line;
    file.diagnostics += u'\n';
    return true;
}

ExportedFile FileExporter::run(const ExportJob& job) {
    current = this;
    file_ = {job, {}, {}};
    isRecovered_ = false;
    try {
        exportOne();
    } catch (const WriteError& error) {
        fail(error.reason);
    } catch (const std::exception& error) {
        fail(foundation::plainReason(error));
    }
    current = nullptr;
    return std::exchange(file_, {});
}

void FileExporter::exportOne() {
    if (options_.update && Output::isCurrent(file_.job)) {
        file_.result.kind = ExportResult::Kind::skipped;
        if (options_.verbose) report(u"skipped, since its document is newer"_s);
        return;
    }
    Input input;
    if (const auto log = read(input)) write(input, *log);
}

std::optional<TesselChatLog> FileExporter::read(Input& input) {
    const auto log = options_.printsLoadLog ? std::make_unique<TesselLoadLog>() : nullptr;
    QString reason;
    try {
        input = readInput(file_.job.file, log.get());
        return TesselChatLog::fromData(input.bytes, input.date, context_.calendar(), log.get());
    } catch (const ReadError& error) {
        reason = error.reason;
    } catch (const std::exception& error) {
        const bool wasRead = !input.name.isEmpty();
        reason =
            wasRead && input.bytes.isEmpty() ? u"it is empty"_s : foundation::plainReason(error);
    }
    if (options_.recovers && !input.bytes.isEmpty())
        if (auto result = recovered(input)) return result;
    fail(reason);
    if (log) file_.diagnostics += log->grabLog();
    return std::nullopt;
}

/// What is left of a damaged transcript.
std::optional<TesselChatLog> FileExporter::recovered(const Input& input) {
    auto result = recovery::recoverChatLog(input.bytes, input.date, context_.calendar());
    if (!result) return std::nullopt;
    report(result->summary());
    isRecovered_ = true;
    return std::move(result->log);
}

void FileExporter::write(const Input& input, const TesselChatLog& log) {
    DocumentSource source{.log = log,
                          .context = context_,
                          .file = input.name,
                          .followsAnother = output_.followsAnother(),
                          .hasByteOrderMark = options_.byteOrderMark,
                          .pictures = options_.pictures};
    const auto writeTo = [&](const ByteSink& sink) { return options_.format->write(source, sink); };
    if (!options_.expand) refuseExpansion(input, log, writeTo);
    const qint64 all = messageCount(log);
    output_.write(file_.job, input, [&](Sink& sink) {
        if (options_.writesAttachments())
            source.attachments = AttachmentWriter(options_, file_.job, input).write(log);
        const qint64 written = writeTo([&sink](QByteArrayView bytes) { sink.write(bytes); });
        if (written != all)
            throw WriteError{u"only %1 of %2 messages could be written"_s.arg(written).arg(all)};
    });
    using Kind = ExportResult::Kind;
    file_.result = {isRecovered_ ? Kind::recovered : Kind::converted, all, {}};
    if (options_.verbose) report(all == 1 ? u"1 message"_s : u"%1 messages"_s.arg(all));
}

void FileExporter::refuseExpansion(const Input& input, const TesselChatLog& log,
                                   const std::function<qint64(const ByteSink&)>& writeTo) const {
    const ExpansionExtras extras{
        .perEvent = static_cast<quint64>(input.name.size()) * mostBytesPerUnit,
        .hasPictures = options_.format->showsPictures && options_.pictures == Pictures::embed};
    const quint64 limit = exportLimit(input.bytes.size());
    const bool isTooLarge =
        (options_.format->readsAttachments && attachmentsExceed(limit, log)) ||
        expandsBeyond(limit, ExpansionBound(log, extras), context_.contacts(), writeTo);
    if (!isTooLarge) return;
    throw WriteError{
        u"as %1 it takes more than %2 MB, out of all proportion to the file "
        "(--expand allows it)"_s.arg(QString::fromLatin1(options_.format->name))
            .arg(limit / 1'000'000)};
}

void FileExporter::fail(const QString& reason) {
    file_.result = {ExportResult::Kind::failed, 0, reason.simplified()};
    report(reason);
}

/// Says something about the file at hand.
void FileExporter::report(const QString& text) {
    file_.diagnostics +=
        oneLine(u"vell-export: "_s + displayName(file_.job.file) + u": "_s + text.simplified()) +
        u'\n';
}

}  // namespace vell
