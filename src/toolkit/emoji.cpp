// SPDX-License-Identifier: MIT
#include "toolkit/emoji.h"

#include <unicode/uchar.h>

#include <QFontDatabase>
#include <QStringList>
#include <algorithm>

namespace vell {
namespace {

constexpr char32_t joiner = 0x200D;
constexpr char32_t keycap = 0x20E3;
constexpr char16_t asText = 0xFE0E;
constexpr char16_t asEmoji = 0xFE0F;

/// Reads code points from a place in a text; 0 behind its end.
class Cursor {
  public:
    Cursor(QStringView text, qsizetype position) : text_(text), position_(position) {}

    [[nodiscard]] qsizetype position() const { return position_; }
    [[nodiscard]] bool atEnd() const { return position_ >= text_.size(); }
    [[nodiscard]] char32_t peek() const {
        if (atEnd()) return 0;
        const QChar c = text_[position_];
        if (c.isHighSurrogate() && position_ + 1 < text_.size() &&
            text_[position_ + 1].isLowSurrogate()) {
            return QChar::surrogateToUcs4(c, text_[position_ + 1]);
        }
        return c.unicode();
    }
    char32_t take() {
        const char32_t c = peek();
        position_ += QChar::requiresSurrogates(c) ? 2 : 1;
        return c;
    }
    bool takeIf(char32_t expected) {
        if (atEnd() || peek() != expected) return false;
        take();
        return true;
    }

  private:
    QStringView text_;
    qsizetype position_;
};

bool has(char32_t c, UProperty property) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), property);
}

// Cheap, and wide of the mark only for rare symbols: most letters of any script are no emoji.
bool mayStartEmoji(char32_t c) {
    if (c < 0x203C)
        return c == 0xA9 || c == 0xAE || c == u'#' || c == u'*' || (c >= u'0' && c <= u'9');
    return c < 0x2C00 || (c >= 0x3030 && c <= 0x3299) || c >= 0x1F000;
}

// One element of a sequence that joiners hold together; true when it asks to be shown as emoji.
bool takeElement(Cursor& cursor) {
    const char32_t base = cursor.take();
    bool emoji = has(base, UCHAR_EMOJI_PRESENTATION);
    if (cursor.takeIf(asText)) return false;
    if (cursor.takeIf(asEmoji)) emoji = true;
    if (has(cursor.peek(), UCHAR_EMOJI_MODIFIER) && has(base, UCHAR_EMOJI_MODIFIER_BASE)) {
        cursor.take();
        emoji = true;
    }
    while (cursor.peek() >= 0xE0020 && cursor.peek() <= 0xE007F)
        cursor.take();  // flags' tags
    return emoji;
}

// Moves behind the emoji that starts here, or behind one character when none does.
bool takeEmoji(Cursor& cursor) {
    const char32_t first = cursor.peek();
    if (!mayStartEmoji(first)) {
        cursor.take();
        return false;
    }
    if (first < 0x80) {
        cursor.take();
        const bool selected = cursor.takeIf(asEmoji);
        return cursor.takeIf(keycap) || selected;
    }
    if (has(first, UCHAR_REGIONAL_INDICATOR)) {
        cursor.take();
        if (has(cursor.peek(), UCHAR_REGIONAL_INDICATOR)) cursor.take();
        return true;
    }
    if (!has(first, UCHAR_EMOJI)) {
        cursor.take();
        return false;
    }
    bool emoji = takeElement(cursor);
    while (cursor.peek() == joiner) {
        Cursor next = cursor;
        next.take();
        if (!has(next.peek(), UCHAR_EXTENDED_PICTOGRAPHIC)) break;
        takeElement(next);
        cursor = next;
        emoji = true;
    }
    return emoji;
}

}  // namespace

EmojiText findEmoji(const QString& text) {
    EmojiText result{text, {}};
    std::vector<EmojiRange>& ranges = result.ranges;
    Cursor cursor(text, 0);
    while (!cursor.atEnd()) {
        const qsizetype start = cursor.position();
        if (!takeEmoji(cursor)) continue;
        const qsizetype length = cursor.position() - start;
        if (const QStringView emoji = QStringView(text).mid(start, length);
            emoji.chopped(1).contains(QChar(asEmoji))) {
            QChar* out = result.shown.data() + start;
            std::stable_partition(out, out + length, [](QChar c) { return c != QChar(asEmoji); });
        }
        if (!ranges.empty() && ranges.back().start + ranges.back().length == start) {
            ranges.back().length += length;
        } else {
            ranges.push_back({start, length});
        }
    }
    return result;
}

const QString& emojiFamily() {
    static const QString family = [] {
        const QStringList installed = QFontDatabase::families();
        for (const char* name : {"Noto Color Emoji", "Apple Color Emoji", "Segoe UI Emoji",
                                 "Twemoji", "JoyPixels", "EmojiOne Color"}) {
            if (installed.contains(QLatin1String(name))) return QString::fromLatin1(name);
        }
        return QString();
    }();
    return family;
}

}  // namespace vell
