#pragma once
// SPDX-License-Identifier: MIT
//
// Output: where the documents of a run go. A stream (standard output, a pipe, a device) takes them
// one after the other; a file is first written to a temporary one in the same folder, then renamed,
// and several threads may write files at once. What exists is replaced only on demand, and a
// transcript never.
//
//     output.write(job, input, [&](Sink& sink) { format.write(log, context, sink); });

#include <sys/types.h>

#include <QSet>
#include <QString>
#include <functional>

#include "cli/export_plan.h"
#include "cli/input.h"
#include "cli/options.h"
#include "cli/sink.h"

namespace vell {

/// Names for documents below one folder, unique within one run.
class OutputNames {
  public:
    /// In the folder that mirrors that of the job's file, if there is one, the file's own name
    /// without the extension ("stdin" for "-"), with "-2" and so on when that is taken.
    QString nameFor(const ExportJob& job);
    /// The name, or it with a number.
    QString unique(const QString& name);

  private:
    QSet<QString> taken_;
};

class Output {
  public:
    using Write = std::function<void(Sink&)>;

    /// Opens the stream or makes the folder. Throws UsageError when the output isn't possible for
    /// these files, WriteError when the system refuses. Says in each job where its document goes.
    Output(const Options& options, ExportPlan& plan);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Writes the document that was made from this input. Throws WriteError, and what `write`
    /// throws; then no file has changed.
    void write(const ExportJob& job, const Input& input, const Write& write);
    /// Of the page that leads to all documents; no document has this name.
    [[nodiscard]] QString indexPath() const;
    /// Whether the document is there and was written after its file was last changed or put where
    /// it is.
    [[nodiscard]] static bool isCurrent(const ExportJob& job);
    /// Whether a stream failed, so that it takes no further document.
    [[nodiscard]] bool isBroken() const { return isBroken_; }
    /// Whether documents go to standard output or the like.
    [[nodiscard]] bool isStream() const { return stream_ >= 0; }

    /// Whether the next document goes to the same stream as one before it.
    [[nodiscard]] bool followsAnother() const { return isStream() && hasWritten_; }

  private:
    const Options& options_;
    const QSet<ExportPlan::FileIdentity> transcripts_;  // no output replaces one of them
    const mode_t ordinaryPermissions_;                  // of documents that are made from no file
    bool isFolder_ = false;
    bool ownsStream_ = false;
    bool isBroken_ = false;
    bool hasWritten_ = false;
    int stream_ = -1;

    [[nodiscard]] QString displayName() const;
    void open(const QString& name, bool forSeveral);
    void openFolder(const QString& name);
    void openStream(int descriptor);
    void writeToStream(const Write& write);
    void writeToFile(const ExportJob& job, const Input& input, const Write& write) const;
};

}  // namespace vell
