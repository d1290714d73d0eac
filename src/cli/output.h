#pragma once
// SPDX-License-Identifier: MIT
//
// Output: where the documents of a run go. A stream (standard output, a pipe, a device) takes them
// one after the other; a file is first written to a temporary one in the same folder, then renamed.
// What exists is replaced only on demand, and a transcript never.
//
//     output.write(input, [&](Sink& sink) { format.write(log, context, sink); });

#include <sys/types.h>

#include <QSet>
#include <QString>
#include <functional>
#include <optional>
#include <utility>

#include "cli/input.h"
#include "cli/options.h"
#include "cli/sink.h"

namespace vell {

/// Names for documents in one folder: unique within one run, never a path.
class OutputNames {
  public:
    /// The name for the document made of this input: its own without the extension ("stdin" for
    /// "-"), with "-2" and so on when that is taken, and the extension given.
    QString nameFor(const QString& input, const QString& extension);

  private:
    QSet<QString> taken_;
};

class Output {
  public:
    using Write = std::function<void(Sink&)>;

    /// Opens the stream or makes the folder. Throws UsageError when the output isn't possible for
    /// these files, WriteError when the system refuses.
    explicit Output(const Options& options);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Writes the document that was made from this input. Throws WriteError, and what `write`
    /// throws; then no file has changed.
    void write(const Input& input, const Write& write);
    /// Whether a stream failed, so that it takes no further document.
    [[nodiscard]] bool isBroken() const { return isBroken_; }
    /// Whether documents go to standard output or the like.
    [[nodiscard]] bool isStream() const { return stream_ >= 0; }

    /// Whether the next document goes to the same stream as one before it.
    [[nodiscard]] bool followsAnother() const { return isStream() && hasWritten_; }

  private:
    using FileIdentity = std::pair<dev_t, ino_t>;

    const Options& options_;
    OutputNames names_;
    QSet<FileIdentity> transcripts_;  // no output replaces one of them
    bool isFolder_ = false;
    bool ownsStream_ = false;
    bool isBroken_ = false;
    bool hasWritten_ = false;
    int stream_ = -1;

    [[nodiscard]] QString displayName() const;
    void open(const QString& name);
    void openFolder(const QString& name);
    void openStream(int descriptor);
    void writeToStream(const Write& write);
    void writeToFile(const Input& input, const Write& write, const QString& name);
};

}  // namespace vell
