// SPDX-License-Identifier: MIT
#include "cli/file_exporter.h"

#include <algorithm>
#include <exception>
#include <map>
#include <memory>
#include <utility>

#include "cli/archive_format.h"
#include "cli/attachment_writer.h"
#include "cli/folders.h"
#include "cli/standard_streams.h"
#include "export/expansion.h"
#include "export/message.h"
#include "foundation/local_path.h"
#include "foundation/plain_reason.h"
#include "inspector/archive_text.h"
#include "library/chat_years.h"
#include "recovery/recovery.h"
#include "transcript/load_log.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 mostBytesPerUnit = 6;  // of a name, escaped

thread_local FileExporter* current = nullptr;

/// The events that are no marks.
qint64 pieceCount(const TesselChatLog& log) {
    return std::count_if(log.events().begin(), log.events().end(),
                         [](const auto& event) { return event.isMessage(); });
}

}  // namespace

QString displayName(const QString& file) {
    return file == u"-" ? u"stdin"_s : file;
}

FileExporter::FileExporter(const Options& options, const ContactsStore& contacts, Output& output,
                           bool isForSeveral)
    : options_(options),
      output_(output),
      isForSeveral_(isForSeveral),
      context_(options.calendar.withoutCache(), options.dateLocale, contacts) {}

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

template <class Work>
ExportedFile FileExporter::guarded(const ExportJob& job, Work work) {
    current = this;
    file_ = {.job = job, .result = {}};
    isRecovered_ = false;
    try {
        work();
    } catch (const WriteError& error) {
        fail(error.reason);
    } catch (const std::exception& error) {
        fail(foundation::plainReason(error));
    }
    current = nullptr;
    return std::exchange(file_, {});
}

ExportedFile FileExporter::run(const ExportJob& job) {
    return guarded(job, [this] { exportOne(); });
}

void FileExporter::exportOne() {
    const bool isCurrent = options_.update && Output::isCurrent(file_.job);
    if (isCurrent) {
        file_.result.kind = ExportResult::Kind::skipped;
        if (options_.verbose) report(u"skipped, since its document is newer"_s);
        if (!options_.index) return;
    }
    if (options_.format == &archiveFormat) return writeArchive();
    Input input;
    const auto log = read(input);
    if (!log) return;
    if (!isCurrent) write(input, *log);
    addIndexEntry(*log);
}

void FileExporter::addIndexEntry(const TesselChatLog& log) {
    if (!options_.index) return;
    const QString page = file_.job.document.sliced(options_.output.size() + 1);
    file_.indexEntry = ::vell::indexEntry(log, context_, page);
}

ExportedFile FileExporter::identify(const ExportJob& job) {
    return guarded(job, [this] {
        Input input;
        const auto log = read(input);
        if (!log) return;
        file_.result.kind = ExportResult::Kind::converted;
        file_.indexEntry =
            IndexEntry{.page = {}, .partners = partnersIn(*log, context_.contacts()), .months = {}};
    });
}

MergedFiles FileExporter::merge(const MergeJob& job) {
    MergedFiles merged{job, {}};
    Input input;
    std::map<int, TesselChatLog> years;
    bool isRecovered = false;
    const auto reading = guarded({.file = job.names}, [&] {
        const std::vector<SessionLog> sessions = readAll(job, input);
        isRecovered = isRecovered_;
        qint64 all = 0;
        for (const SessionLog& session : sessions)
            all += pieceCount(*session.log);
        const MergedChat chat = mergeChats(sessions, context_.calendar());
        years = chatYears(*chat.log(), context_.calendar());
        qint64 merged = chat.repeatCount();
        for (const auto& [year, log] : years)
            merged += pieceCount(log);
        if (merged != all)
            throw WriteError{
                u"only %1 of %2 texts, pictures and files could be merged"_s.arg(merged).arg(all)};
        file_.diagnostics.clear();
        file_.result.kind = ExportResult::Kind::converted;
    });
    if (reading.result.kind == ExportResult::Kind::failed)
        merged.documents.push_back(reading);
    else
        for (const auto& [year, log] : years)
            merged.documents.push_back(exportYear(job, input, log, year, isRecovered));
    return merged;
}

/// The input stands for all of them: as large as all, as private as the most private one.
std::vector<SessionLog> FileExporter::readAll(const MergeJob& job, Input& input) {
    std::vector<SessionLog> sessions;
    input.permissions = 0666;
    for (const ExportJob& file : job.files) {
        file_.job = file;
        Input one;
        auto log = read(one);
        if (!log) continue;
        input.size += one.size;
        input.permissions = *input.permissions & one.permissions.value_or(0600);
        sessions.push_back({static_cast<std::uint32_t>(file.number),
                            foundation::pathBytes(file.file),
                            std::make_shared<const TesselChatLog>(*std::move(log))});
    }
    file_.job = {.file = job.names};
    file_.result = {};
    return sessions;
}

ExportedFile FileExporter::exportYear(const MergeJob& job, const Input& input,
                                      const TesselChatLog& log, int year, bool isRecovered) {
    const QString yearName = year == 0 ? u"undated"_s : QString::number(year);
    const QString name = job.folder + u'/' + yearName;
    ExportJob document{.number = job.number, .file = name, .name = name};
    document.document =
        options_.output + u'/' + name + u'.' + QString::fromLatin1(options_.format->extension);
    return guarded(document, [&] {
        const QByteArray folder = foundation::pathBytes(options_.output + u'/' + job.folder);
        mirrorFolder(folder, folderOf(foundation::pathBytes(job.files.front().file)));
        isRecovered_ = isRecovered;
        Input yearInput = input;
        yearInput.name = name;
        write(yearInput, log, job.names + u' ' + yearName);
        addIndexEntry(log);
    });
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

/// The document has all that can be read, also where that isn't all.
void FileExporter::writeArchive() {
    Input input;
    try {
        input = readInput(file_.job.file, nullptr);
    } catch (const ReadError& error) {
        return fail(error.reason);
    }
    QString problem;
    output_.write(file_.job, input, [&](Sink& sink) {
        problem = inspector::writeArchive(input.bytes,
                                          [&sink](QByteArrayView bytes) { sink.write(bytes); });
    });
    if (!problem.isEmpty()) return fail(problem);
    file_.result.kind = ExportResult::Kind::converted;
}

/// What is left of a damaged transcript.
std::optional<TesselChatLog> FileExporter::recovered(const Input& input) {
    auto result = recovery::recoverChatLog(input.bytes, input.date, context_.calendar());
    if (!result) return std::nullopt;
    report(result->extent.summary());
    isRecovered_ = true;
    return std::move(result->log);
}

void FileExporter::write(const Input& input, const TesselChatLog& log, const QString& title) {
    DocumentSource source{.log = log,
                          .context = context_,
                          .file = input.name,
                          .title = title,
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
    const quint64 limit = exportLimit(input.size);
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
