#pragma once
// SPDX-License-Identifier: MIT
//
// Sink: writes a document to a descriptor piece by piece, so that none is ever in memory as a
// whole. The first failure throws and so ends the document.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace vell {

/// Why something could not be written, in plain words.
struct WriteError {
    QString reason;
};

/// The meaning of the current errno.
[[nodiscard]] QString systemReason();

class Sink {
  public:
    /// Borrows the descriptor.
    explicit Sink(int descriptor) : descriptor_(descriptor) {}

    /// Takes a piece of any size. Throws WriteError.
    void write(QByteArrayView bytes);
    /// Writes what is still buffered; to be called at the end. Throws WriteError.
    void flush();

  private:
    int descriptor_;
    QByteArray held_;

    void writeNow(QByteArrayView bytes) const;
};

}  // namespace vell
