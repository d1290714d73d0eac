// SPDX-License-Identifier: MIT
#include "toolkit/shown_text.h"

namespace vell {

QString shownText(const QString& text, qsizetype longest) {
    if (text.size() <= longest) return text;
    const bool isPair = text[longest - 1].isHighSurrogate();
    return text.left(isPair ? longest - 1 : longest) + u'…';
}

}  // namespace vell
