#pragma once
// SPDX-License-Identifier: MIT
//
// Bounds texts that a window shows in one line: names in a transcript may be as long as the file,
// and the toolkit and the desktop lay out, copy and send all of it.

#include <QString>
#include <QStringList>

#include "foundation/elided.h"

namespace vell {

inline constexpr qsizetype longestShownText = 300;

/// The text, or its start and "…" where it is longer; a surrogate pair is never split.
[[nodiscard]] inline QString shownText(const QString& text) {
    return foundation::elided(text, longestShownText);
}

/// Names separated by commas, or as many as fit and "…". Asks for a name only while there is room.
template <class Names, class NameOf>
[[nodiscard]] QString shownList(const Names& names, NameOf nameOf) {
    QStringList shown;
    qsizetype size = 0;
    for (const auto& name : names) {
        if (size > longestShownText) {
            shown.append(QStringLiteral("…"));
            break;
        }
        const QString text = shownText(nameOf(name));
        if (shown.contains(text)) continue;
        size += text.size();
        shown.append(text);
    }
    return shown.join(QStringLiteral(", "));
}

}  // namespace vell
