#pragma once
// SPDX-License-Identifier: MIT
//
// Sink: where a document goes, piece by piece, so that none is ever held whole. The first failure
// throws and so ends the document.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace vell {

/// Why something could not be written, in plain words.
struct WriteError {
    QString reason;
};

/// What errno stands for now.
[[nodiscard]] QString systemReason();

class Sink {
  public:
    /// Borrows the descriptor.
    explicit Sink(int descriptor) : descriptor_(descriptor) {}

    /// Takes a piece of any size. Throws WriteError.
    void write(QByteArrayView bytes);
    /// Passes on what is still held back; whoever made the sink calls it at the end. Throws
    /// WriteError.
    void flush();

  private:
    int descriptor_;
    QByteArray held_;

    void writeNow(QByteArrayView bytes) const;
};

}  // namespace vell
