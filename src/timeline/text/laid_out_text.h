#pragma once
// SPDX-License-Identifier: MIT
//
// LaidOutText: a text broken into lines for a width. Short texts are laid out whole and are as wide
// as their longest line. Of long ones only the blocks that are looked at are laid out, the
// heights of the others are estimates, and the width is all there is. All lengths are device pixels
// unless they are said to be points; offsets into the text count UTF-16 units. GUI thread only.

#include <QCache>
#include <QFont>
#include <QRect>
#include <QString>
#include <QTextLayout>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "timeline/text/height_tree.h"
#include "timeline/text/text_blocks.h"
#include "timeline/text/text_range.h"
#include "toolkit/emoji.h"

class QPainter;

namespace vell {

struct TextFormat {
    QFont font;
    QString emojiFamily = vell::emojiFamily();
    qreal lineSpacing = 0;  ///< between lines, in points
    bool isCentered = false;
    bool isUnderlined = false;
    Qt::LayoutDirection direction = Qt::LeftToRight;  ///< of paragraphs without a strong letter
    qreal ratio = 1;                                  ///< device pixels a point
};

class LaidOutText {
  public:
    /// The most text that is laid out whole.
    static constexpr qsizetype longestShort = 8192;
    static constexpr qsizetype mostBlocksOfShort = 128;

    LaidOutText(QString text, TextFormat format, int maxWidth);

    [[nodiscard]] const QString& text() const { return text_; }
    [[nodiscard]] const TextFormat& format() const { return format_; }
    [[nodiscard]] int width() const { return width_; }
    /// Without spacing below the last line.
    [[nodiscard]] int height() const;

    [[nodiscard]] bool isLong() const { return isLong_; }
    [[nodiscard]] qsizetype blockCount() const { return heights_.count(); }
    /// Where a block starts; block blockCount() is the text's end.
    [[nodiscard]] qint64 blockTop(qsizetype block) const { return heights_.top(block); }
    [[nodiscard]] qsizetype blockAt(qint64 y) const { return heights_.indexAt(y); }
    [[nodiscard]] qsizetype blockOf(qsizetype offset) const;
    /// Lays out a block, so that its height is exact; returns whether that changed it.
    bool measureBlock(qsizetype block);
    [[nodiscard]] bool isMeasured(qsizetype block) const {
        return !isLong_ || isMeasured_[static_cast<size_t>(block)];
    }
    /// The first block at or after `from` whose height is an estimate; nothing when there is none.
    [[nodiscard]] std::optional<qsizetype> firstEstimated(qsizetype from = 0) const;

    struct Line {
        qsizetype start;  ///< the offset of its first character
        qint64 top;
    };
    /// The line at a place, or the nearest one.
    [[nodiscard]] Line line(qint64 y) const;

    /// Draws the lines that touch [top, bottom) in the painter's pen, the text's top left corner at
    /// `origin`. The painter counts device pixels.
    void paint(QPainter& painter, QPoint origin, int top, int bottom) const;

    /// Visits the lines that touch [top, bottom), for what isn't drawn by a painter. `content` is
    /// the text that the line's offsets count in, and its places are points from `top` device
    /// pixels below the text's upper edge.
    using LineVisitor = std::function<void(const QTextLine& line, QStringView content, int top)>;
    void forEachLine(int top, int bottom, const LineVisitor& visit) const;

    /// The places of a range on the lines that touch [top, bottom), without the
    /// spacing between lines. A line break that is among them shows on empty lines.
    [[nodiscard]] std::vector<QRect> region(TextRange range, int top, int bottom) const;
    /// The offsets whose lines may touch [top, bottom).
    [[nodiscard]] TextRange offsetsBetween(int top, int bottom) const;
    /// Between lines.
    [[nodiscard]] int spacing() const { return spacing_; }

    /// The offset between two characters that is nearest to a point.
    [[nodiscard]] qsizetype offsetAt(QPoint point) const;
    /// The offset of the character below a point, or of the nearest one on its line.
    [[nodiscard]] qsizetype characterAt(QPoint point) const;
    /// The offsets of the line that holds an offset, without its line break.
    [[nodiscard]] TextRange lineAround(qsizetype offset) const;
    /// Whether the paragraph around an offset runs from right to left.
    [[nodiscard]] bool isRightToLeft(qsizetype offset) const;
    /// Whether a point lies on a line's characters, not beside or below them.
    [[nodiscard]] bool isOnText(QPoint point) const;
    /// Where a caret before `offset` stands, one pixel wide.
    [[nodiscard]] QRect caret(qsizetype offset) const;

  private:
    [[nodiscard]] qsizetype hit(QPoint point, QTextLine::CursorPosition where) const;
    QTextLayout& layout(qsizetype block) const;
    std::unique_ptr<QTextLayout> makeLayout(const TextBlock& block) const;
    void placeLines(const TextBlock& block, QTextLayout& layout) const;
    [[nodiscard]] int layoutHeight(const QTextLayout& layout) const;
    [[nodiscard]] int estimatedHeight(const TextBlock& block) const;
    [[nodiscard]] QTextLine lineAt(const QTextLayout& layout, int y) const;
    /// A line of emoji, or in a fallback font, is as high as one in the format's own font.
    [[nodiscard]] int lineHeight(const QTextLine& line) const;
    /// How much of that is above what the line itself takes.
    [[nodiscard]] int lead(const QTextLine& line) const;
    [[nodiscard]] int lineTop(const QTextLine& line) const;

    QString text_;
    TextFormat format_;
    int maxWidth_;
    qreal ascent_;  // of the format's font, in points
    qreal descent_;
    int width_ = 0;
    int spacing_;
    bool isLong_;
    std::vector<TextBlock> blocks_;
    std::vector<bool> isMeasured_;
    HeightTree heights_;  // each with the spacing below its last line
    int estimatedLine_ = 0;
    qreal estimatedCharacter_ = 0;
    mutable std::vector<std::unique_ptr<QTextLayout>> shortLayouts_;
    mutable QCache<qsizetype, QTextLayout> longLayouts_{qsizetype{128} * 1024};  // in characters
};

}  // namespace vell
