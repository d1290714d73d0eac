#pragma once
// SPDX-License-Identifier: MIT
//
// Exporter: takes the files of a run one after the other, reads each, writes it in the format asked
// for, and tells what went wrong without stopping.

#include <QIODevice>
#include <QSet>
#include <cstdio>

#include "cli/options.h"
#include "cli/output.h"
#include "identity/contacts_store.h"

namespace vell {

/// The standard streams of the run.
struct Streams {
    QIODevice& input;
    QIODevice& output;
    std::FILE* error;
};

class Exporter {
  public:
    /// Throws UsageError when the contacts can't be read.
    Exporter(const Options& options, Streams streams);

    /// Exports all files; answers whether nothing failed. Throws UsageError when the output can't
    /// serve for these files.
    bool run();

  private:
    const Options& options_;
    Streams streams_;
    const ContactsStore contacts_;
    OutputNames names_;
    QSet<QString> transcripts_;  // where the files really lie; no output replaces one of them
    bool intoFolder_ = false;
    bool showsProgress_ = false;

    void prepareOutput();
    bool exportOne(const QString& file);
    [[nodiscard]] TesselChatLog read(const QString& file) const;
    void write(const TesselChatLog& log, const QString& file);
    void report(const QString& file, const QString& reason) const;
    void showProgress(qsizetype done, const QString& file) const;
    void clearProgress() const;
};

/// Runs the program: parses, exports, reports. Answers the exit status.
int runExport(const QStringList& arguments, Streams streams);

}  // namespace vell
