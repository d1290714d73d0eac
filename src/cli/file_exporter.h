#pragma once
// SPDX-License-Identifier: MIT
//
// FileExporter: exports one file after the other; each thread has its own. Whatever goes wrong with
// a file is in its result.

#include <QString>
#include <QStringView>
#include <optional>

#include "cli/export_plan.h"
#include "cli/export_report.h"
#include "cli/options.h"
#include "cli/output.h"
#include "identity/contacts/contacts_store.h"

namespace vell {

struct ExportedFile {
    ExportJob job;
    ExportResult result;
    QString diagnostics;  ///< for standard error: whole lines
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

    void exportOne();
    [[nodiscard]] std::optional<TesselChatLog> read(Input& input);
    [[nodiscard]] std::optional<TesselChatLog> recovered(const Input& input);
    void write(const Input& input, const TesselChatLog& log);
    void refuseExpansion(const Input& input, const TesselChatLog& log,
                         const std::function<qint64(const ByteSink&)>& writeTo) const;
    void fail(const QString& reason);
    void report(const QString& text);
};

}  // namespace vell
