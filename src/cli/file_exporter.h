#pragma once
// SPDX-License-Identifier: MIT
//
// FileExporter: exports one file after the other; each thread has its own. Whatever goes wrong with
// a file is in its result.

#include <QString>
#include <QStringView>
#include <functional>
#include <optional>
#include <vector>

#include "cli/export_plan.h"
#include "cli/export_report.h"
#include "cli/options.h"
#include "cli/output.h"
#include "export/archive_index.h"
#include "identity/contacts/contacts_store.h"
#include "library/merged_chat.h"

namespace vell {

struct ExportedFile {
    ExportJob job;
    ExportResult result;
    QString diagnostics{};                   ///< for standard error: whole lines
    std::optional<IndexEntry> indexEntry{};  ///< where an index is wanted
};

/// The files of one person, or of a group of people, of whom one document a year is written.
struct MergeJob {
    std::size_t number = 0;
    QString names;   ///< of the people
    QString folder;  ///< of the documents, below that of all
    std::vector<ExportJob> files;
    qint64 size = 0;  ///< of the files
};
struct MergedFiles {
    MergeJob job;
    std::vector<ExportedFile> documents;
};

/// A file's name in messages.
[[nodiscard]] QString displayName(const QString& file);

class FileExporter {
  public:
    /// Borrows all of them. Each line says which file it is about if there are several.
    FileExporter(const Options& options, const ContactsStore& contacts, Output& output,
                 bool isForSeveral);
    ~FileExporter();
    FileExporter(const FileExporter&) = delete;
    FileExporter& operator=(const FileExporter&) = delete;

    [[nodiscard]] ExportedFile run(const ExportJob& job);
    /// Only reads the file and says whom it is with, in its index entry.
    [[nodiscard]] ExportedFile identify(const ExportJob& job);
    /// Writes the documents of all years. Files that can't be read are left out without a word.
    [[nodiscard]] MergedFiles merge(const MergeJob& job);

    /// Adds a line of the plain print to those of the file at hand. False on a thread that exports
    /// nothing.
    static bool addDiagnostic(QStringView line);

  private:
    const Options& options_;
    Output& output_;
    const bool isForSeveral_;
    const FormatContext context_;
    ExportedFile file_;         // the one at hand
    bool isRecovered_ = false;  // it

    template <class Work>
    ExportedFile guarded(const ExportJob& job, Work work);
    void exportOne();
    [[nodiscard]] std::vector<SessionLog> readAll(const MergeJob& job, Input& input);
    [[nodiscard]] ExportedFile exportYear(const MergeJob& job, const Input& input,
                                          const TesselChatLog& log, int year, bool isRecovered);
    void addIndexEntry(const TesselChatLog& log);
    [[nodiscard]] std::optional<TesselChatLog> read(Input& input);
    void writeArchive();
    [[nodiscard]] std::optional<TesselChatLog> recovered(const Input& input);
    void write(const Input& input, const TesselChatLog& log, const QString& title = {});
    void refuseExpansion(const Input& input, const TesselChatLog& log,
                         const std::function<qint64(const ByteSink&)>& writeTo) const;
    void fail(const QString& reason);
    void report(const QString& text);
};

}  // namespace vell
