#pragma once
// SPDX-License-Identifier: MIT
//
// Where documents go. A file is written whole to a temporary one beside it and then renamed, so
// that nobody ever finds half a document; what exists is replaced only on demand.

#include <QIODevice>
#include <QSet>
#include <QString>
#include <functional>

namespace vell {

/// Why a file could not be written.
struct WriteError {
    QString reason;
};

/// Names for documents in one folder: unique within one run, never a path.
class OutputNames {
  public:
    /// The name for the document made of this input: its own without the extension ("stdin" for
    /// "-"), with "-2" and so on when that is taken, and the extension given.
    QString nameFor(const QString& input, const QString& extension);

  private:
    QSet<QString> taken_;
};

/// Writes a file through `write`. Throws WriteError; then nothing has changed.
void writeFile(const QString& path, bool replacesExisting,
               const std::function<void(QIODevice&)>& write);

}  // namespace vell
