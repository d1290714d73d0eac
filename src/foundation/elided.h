#pragma once
// SPDX-License-Identifier: MIT
//
// Texts cut for diagnostics: what a file holds may be longer than anybody wants to read, or to copy
// for each line that names it.

#include <QString>

namespace foundation {

/// The text, or its beginning and "…" where it has more than `most` units (at least 1).
[[nodiscard]] inline QString elided(const QString& text, qsizetype most) {
    if (text.size() <= most) return text;
    qsizetype kept = most - 1;
    if (kept > 0 && text[kept - 1].isHighSurrogate()) --kept;
    return text.first(kept) + QChar(0x2026);
}

}  // namespace foundation
