// SPDX-License-Identifier: MIT
#include "export/text_sink.h"

namespace vell {

void TextSink::passOn() {
    next_(text_.toUtf8());
    gone_ += text_.size();
    // The capacity for a giant piece isn't kept for the small ones after it.
    if (text_.capacity() <= pieceSize * 4)
        text_.resize(0);
    else
        text_ = QString();
}

}  // namespace vell
