#pragma once
// SPDX-License-Identifier: MIT
//
// ExportReport: what became of each file of a run: as JSON in a file, if that is wanted, and as a
// table for people.

#include <QHash>
#include <QString>
#include <memory>
#include <optional>

#include "cli/export_plan.h"
#include "cli/sink.h"
#include "cli/temporary_file.h"
#include "export/json_writer.h"

namespace vell {

struct ExportResult {
    enum class Kind { converted, recovered, skipped, failed };
    Kind kind = Kind::failed;
    qint64 messages = 0;
    QString reason{};  ///< why it failed, in plain words
};

class ExportReport {
  public:
    /// Without a path only the table is made. Throws WriteError.
    explicit ExportReport(const QString& path);

    // Each throws WriteError.
    void add(const ExportJob& job, const ExportResult& result);
    void add(const UnreadableFolder& folder);
    /// Completes the file.
    void finish();

    [[nodiscard]] bool hasRecovered() const { return recovered_ > 0; }
    [[nodiscard]] bool hasFailures() const { return failed_ > 0; }
    /// Some lines; the most frequent reasons first.
    [[nodiscard]] QString table() const;

  private:
    /// The JSON, written as it grows.
    struct Document {
        explicit Document(const QByteArray& path);
        QByteArray path;
        TemporaryFile file;
        Sink sink;
        JsonWriter writer;
    };
    std::unique_ptr<Document> document_;
    qint64 converted_ = 0;
    qint64 recovered_ = 0;  ///< with what was left of them
    qint64 skipped_ = 0;
    qint64 failed_ = 0;
    qint64 messages_ = 0;
    QHash<QString, qint64> reasons_;

    void addFailure(const QString& reason);
};

}  // namespace vell
