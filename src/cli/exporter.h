#pragma once
// SPDX-License-Identifier: MIT
//
// Exporter: takes the files of a run one after the other, reads each, writes it in the format asked
// for, and tells what went wrong without stopping.

#include <QStringList>
#include <QStringView>

#include "cli/options.h"
#include "cli/output.h"
#include "identity/contacts/contacts_store.h"

namespace vell {

class Exporter {
  public:
    /// Throws UsageError when the contacts can't be read or the output can't serve for these files.
    explicit Exporter(const Options& options);
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    /// Exports all files; answers whether nothing failed.
    bool run();

  private:
    const Options& options_;
    const ContactsStore contacts_;
    Output output_;
    QString file_;  // the one at hand
    bool showsProgress_ = false;

    bool exportOne();
    void write(const Input& input, const TesselChatLog& log);
    void report(const QString& reason) const;
    void printDiagnostic(QStringView line) const;
    void showProgress(qsizetype done) const;
    void clearProgress() const;
};

/// Runs the program: parses, exports, reports. Answers the exit status.
int runExport(const QStringList& arguments);

}  // namespace vell
