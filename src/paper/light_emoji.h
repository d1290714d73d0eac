#pragma once
// SPDX-License-Identifier: MIT
//
// The emoji font without its pictures, to lay out emoji with. The toolkit caches no advance of a
// glyph that is a picture of more than 127 pixels: it decodes one each time it lays out an emoji.

#include <QRawFont>
#include <QString>

namespace vell {

/// Its family. The emoji font's own where nothing is gained, or it can't be done without.
[[nodiscard]] const QString& lightEmojiFamily();

/// Whether the font is the light one; what is painted in it must be painted in the other.
[[nodiscard]] bool isLightEmoji(const QRawFont& font);
/// The font with the pictures, in pixels an em; the glyphs have the same numbers in both.
[[nodiscard]] QRawFont paintedEmoji(qreal pixelSize);

}  // namespace vell
