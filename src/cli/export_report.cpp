// SPDX-License-Identifier: MIT
#include "cli/export_report.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "cli/folders.h"
#include "cli/standard_streams.h"
#include "foundation/local_path.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mostReasons = 10;
constexpr int numberWidth = 10;
constexpr mode_t permissions = 0600;  // it names private files

QString row(const QString& what, qint64 count) {
    return u"%1%2\n"_s.arg(what, -numberWidth).arg(count, numberWidth);
}

}  // namespace

ExportReport::Document::Document(const QByteArray& path)
    : path(path),
      file(folderOf(path)),
      sink(file.descriptor()),
      writer([this](QByteArrayView bytes) { sink.write(bytes); }) {
    writer.beginObject();
    writer.key("files");
    writer.beginArray();
}

ExportReport::ExportReport(const QString& path) {
    if (path.isEmpty()) return;
    try {
        document_ = std::make_unique<Document>(foundation::pathBytes(path));
    } catch (const WriteError& error) {
        throw WriteError{path + u": "_s + error.reason};
    }
}

void ExportReport::add(const ExportJob& job, const ExportResult& result) {
    using Kind = ExportResult::Kind;
    if (result.kind == Kind::failed) addFailure(result.reason);
    if (result.kind == Kind::skipped) ++skipped_;
    if (result.kind == Kind::converted) ++converted_;
    if (result.kind == Kind::recovered) ++recovered_;
    messages_ += result.messages;
    if (!document_) return;
    JsonWriter& writer = document_->writer;
    writer.breakLine();
    writer.beginObject();
    writer.key("file");
    writer.string(job.file);
    if (!job.document.isEmpty()) {
        writer.key("document");
        writer.string(job.document);
    }
    writer.key("result");
    switch (result.kind) {
        case Kind::converted:
        case Kind::recovered:
            writer.ascii(result.kind == Kind::converted ? "converted" : "recovered");
            writer.key("messages");
            writer.number(result.messages);
            break;
        case Kind::skipped:
            writer.ascii("skipped");
            break;
        case Kind::failed:
            writer.ascii("failed");
            writer.key("reason");
            writer.string(result.reason);
            break;
    }
    writer.endObject();
}

void ExportReport::add(const UnreadableFolder& folder) {
    add(ExportJob{.file = folder.path}, ExportResult{.reason = folder.reason});
}

void ExportReport::addFailure(const QString& reason) {
    ++failed_;
    ++reasons_[reason];
}

void ExportReport::finish() {
    if (!document_) return;
    JsonWriter& writer = document_->writer;
    writer.breakLine();
    writer.endArray();
    writer.key("converted");
    writer.number(converted_);
    if (recovered_ > 0) {
        writer.key("recovered");
        writer.number(recovered_);
    }
    writer.key("skipped");
    writer.number(skipped_);
    writer.key("failed");
    writer.number(failed_);
    writer.key("messages");
    writer.number(messages_);
    writer.endObject();
    writer.endLine();
    writer.flush();
    document_->sink.flush();
    document_->file.keepAs(document_->path, permissions, true);
}

QString ExportReport::table() const {
    std::vector<std::pair<qint64, QString>> reasons;
    for (auto reason = reasons_.cbegin(); reason != reasons_.cend(); ++reason)
        reasons.emplace_back(-reason.value(), reason.key());
    std::sort(reasons.begin(), reasons.end());
    QString text = row(u"Converted"_s, converted_);
    if (recovered_ > 0) text += row(u"Recovered"_s, recovered_);
    text += row(u"Skipped"_s, skipped_) + row(u"Failed"_s, failed_);
    qint64 others = failed_;
    for (std::size_t i = 0; i < std::min(reasons.size(), mostReasons); ++i) {
        const auto& [count, reason] = reasons[i];
        text += u"%1  %2\n"_s.arg(-count, 2 * numberWidth).arg(oneLine(reason));
        others += count;
    }
    if (others > 0) text += u"%1  for other reasons\n"_s.arg(others, 2 * numberWidth);
    return text;
}

}  // namespace vell
