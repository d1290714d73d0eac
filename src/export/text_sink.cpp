// SPDX-License-Identifier: MIT
#include "export/text_sink.h"

namespace vell {

void TextSink::passOn() {
    next_(text_.toUtf8());
    gone_ += text_.size();
    // The room of a giant piece isn't kept for the small ones behind it.
    if (text_.capacity() <= kPassedOnSize * 4)
        text_.resize(0);
    else
        text_ = QString();
}

}  // namespace vell
