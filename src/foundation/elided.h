#pragma once
// SPDX-License-Identifier: MIT
//
// Texts cut for diagnostics: a file may hold texts too long to read, or to copy into each line that
// names them.

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
