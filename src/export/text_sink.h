#pragma once
// SPDX-License-Identifier: MIT
//
// TextSink: buffers a text and passes it on as UTF-8. The end of the text can be changed until a
// piece is declared complete; complete pieces are passed on, so that no document is ever in memory
// as a whole. A sink without a destination keeps everything for take().

#include <QByteArrayView>
#include <QString>
#include <functional>
#include <utility>

namespace vell {

/// Takes the next bytes of a document. What it throws ends the document.
using ByteSink = std::function<void(QByteArrayView bytes)>;

class TextSink {
  public:
    TextSink() = default;
    explicit TextSink(ByteSink next) : next_(std::move(next)) {}

    /// Where to append. What was appended before the last endPiece() may be gone.
    [[nodiscard]] QString& text() { return text_; }
    /// The number of units appended so far.
    [[nodiscard]] qsizetype size() const { return gone_ + text_.size(); }
    [[nodiscard]] bool isEmpty() const { return size() == 0; }
    void endPiece() {
        if (next_ && text_.size() >= pieceSize) passOn();
    }
    /// Passes on what is left; to be called at the end of a document.
    void passOn();
    [[nodiscard]] QString take() { return std::move(text_); }

  private:
    static constexpr qsizetype pieceSize = 1 << 15;

    ByteSink next_;
    QString text_;
    qsizetype gone_ = 0;  // units that were passed on
};

}  // namespace vell
