#pragma once
// SPDX-License-Identifier: MIT
//
// Bounds what a window is given to show in one line: names in a transcript may be as long as the
// file, and toolkit and desktop lay out, copy and send whole what they are given.

#include <QString>
#include <QStringList>

namespace vell {

inline constexpr qsizetype longestShownText = 300;

/// The text, or its start and "…"; never half of a character beyond the basic plane.
[[nodiscard]] QString shownText(const QString& text, qsizetype longest = longestShownText);

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
