#pragma once
// SPDX-License-Identifier: MIT
//
// TextSink: a text on its way out, in UTF-8. Its end can still be changed until a piece of it is
// declared complete; complete pieces leave by and by, so that no document is ever in memory as a
// whole. A sink that leads nowhere keeps everything for take().

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

    /// Where to append. Only what was appended since the last endPiece() is sure to be there.
    [[nodiscard]] QString& text() { return text_; }
    /// How much was appended in all.
    [[nodiscard]] qsizetype size() const { return gone_ + text_.size(); }
    [[nodiscard]] bool isEmpty() const { return size() == 0; }
    void endPiece() {
        if (next_ && text_.size() >= kPassedOnSize) passOn();
    }
    /// Passes on what is left; whoever writes a document calls it at its end.
    void passOn();
    [[nodiscard]] QString take() { return std::move(text_); }

  private:
    static constexpr qsizetype kPassedOnSize = 1 << 15;

    ByteSink next_;
    QString text_;
    qsizetype gone_ = 0;  // units that were passed on
};

}  // namespace vell
