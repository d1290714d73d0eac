#pragma once
// SPDX-License-Identifier: MIT
//
// Which stretches of a text are emoji, so that a font which has them whole can be asked for. Left
// to itself, a text layout takes the parts of a flag, a family or a skin tone from several fonts.

#include <QString>
#include <QStringView>
#include <vector>

namespace vell {

struct EmojiRange {
    qsizetype start = 0;
    qsizetype length = 0;
    friend bool operator==(const EmojiRange&, const EmojiRange&) = default;
};

struct EmojiText {
    /// The text as a layout should get it: inside each emoji the selectors for emoji stand at its
    /// end. Fonts have no glyph for a selector, and one in the middle would part the sequence.
    QString shown;
    /// The stretches of complete emoji in text order, neighbours joined. A character that is shown
    /// as text by default counts only when a selector for emoji follows it.
    std::vector<EmojiRange> ranges;
};

[[nodiscard]] EmojiText findEmoji(const QString& text);

/// The font family that draws emoji in colour here; empty when there is none.
[[nodiscard]] const QString& emojiFamily();

}  // namespace vell
