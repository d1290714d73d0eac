#pragma once
// SPDX-License-Identifier: MIT
//
// Exporter: reads the files of a run one after the other, writes each in the requested format, and
// reports failures without stopping.

#include <QStringList>
#include <QStringView>

#include "cli/options.h"
#include "cli/output.h"
#include "identity/contacts/contacts_store.h"

namespace vell {

class Exporter {
  public:
    /// Throws UsageError when the contacts can't be read or the output isn't possible for these
    /// files.
    explicit Exporter(const Options& options);
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    /// Exports all files. Returns whether all succeeded.
    bool run();

  private:
    const Options& options_;
    const ContactsStore contacts_;
    const FormatContext context_;
    Output output_;
    QString file_;  // the one at hand
    bool showsProgress_ = false;

    bool exportOne();
    void write(const Input& input, const TesselChatLog& log);
    void report(const QString& text) const;
    void printDiagnostic(QStringView line) const;
    void showProgress(qsizetype done) const;
    void clearProgress() const;
};

/// Runs the program: parses, exports, reports. Returns the exit status.
int runExport(const QStringList& arguments);

}  // namespace vell
