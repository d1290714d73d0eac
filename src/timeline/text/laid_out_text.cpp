// SPDX-License-Identifier: MIT
#include "timeline/text/laid_out_text.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "toolkit/emoji.h"

namespace vell {
namespace {

// Keeps a layout's fixed-point rounding from adding a pixel.
constexpr qreal roundingSlack = 1.0 / 64;

// Glyphs this near to each other, in points, are neighbours.
constexpr qreal joiningSlack = 0.5;

// How a selected line break shows on an empty line.
constexpr qreal lineBreakPoints = 4;

int ceilPixels(qreal points, qreal ratio) {
    return static_cast<int>(std::ceil(points * ratio - roundingSlack));
}

// Without a family of their own the parts of an emoji come from several fonts.
QList<QTextLayout::FormatRange> emojiFormats(const std::vector<EmojiRange>& ranges,
                                             const QString& family) {
    QList<QTextLayout::FormatRange> formats;
    for (const EmojiRange& range : ranges) {
        if (family.isEmpty()) break;
        QTextCharFormat format;
        format.setFontFamilies({family});
        formats.push_back({static_cast<int>(range.start), static_cast<int>(range.length), format});
    }
    return formats;
}

// Where the offsets [from, to) of a layout are on one line: several stretches when its letters run
// in both directions.
std::vector<std::pair<qreal, qreal>> stretches(const QTextLine& line, int from, int to) {
    const int start = line.textStart();
    const int end = start + line.textLength();
    if (from <= start && to >= end) return {{line.x(), line.x() + line.naturalTextWidth()}};
    std::vector<std::pair<qreal, qreal>> found;
    const int first = std::max(from, start);
    const int length = std::min(to, end) - first;
    if (length <= 0) return {};
    // Carets don't help: where the direction changes, both edges of a letter share one.
    for (const QGlyphRun& run : line.glyphRuns(first, length)) {
        const QList<QPointF> places = run.positions();
        const QList<QPointF> advances = run.rawFont().advancesForGlyphIndexes(run.glyphIndexes());
        for (qsizetype i = 0; i < places.size(); ++i)
            found.emplace_back(places[i].x(), places[i].x() + advances[i].x());
    }
    std::sort(found.begin(), found.end());
    std::vector<std::pair<qreal, qreal>> joined;
    for (const auto& piece : found) {
        if (!joined.empty() && piece.first <= joined.back().second + joiningSlack) {
            joined.back().second = std::max(joined.back().second, piece.second);
        } else {
            joined.push_back(piece);
        }
    }
    return joined;
}

}  // namespace

LaidOutText::LaidOutText(QString text, TextFormat format, int maxWidth)
    : text_(std::move(text)),
      format_(std::move(format)),
      maxWidth_(std::max(maxWidth, 1)),
      spacing_(static_cast<int>(std::lround(format_.lineSpacing * format_.ratio))),
      blocks_(splitIntoBlocks(text_, format_.direction)) {
    const QFontMetricsF metrics(format_.font);
    ascent_ = metrics.ascent();
    descent_ = metrics.descent();
    const auto count = static_cast<qsizetype>(blocks_.size());
    isLong_ = text_.size() > longestShort || count > mostBlocksOfShort;
    if (isLong_) {
        estimatedLine_ = ceilPixels(ascent_ + descent_, format_.ratio) + spacing_;
        estimatedCharacter_ = metrics.averageCharWidth() * format_.ratio;
        width_ = std::max(maxWidth_, ceilPixels(metrics.maxWidth(), format_.ratio));
        isMeasured_.assign(blocks_.size(), false);
        heights_.assign(
            count, [&](qsizetype i) { return estimatedHeight(blocks_[static_cast<size_t>(i)]); });
        return;
    }
    qreal widest = 0;
    shortLayouts_.reserve(blocks_.size());
    for (const TextBlock& block : blocks_) {
        shortLayouts_.push_back(makeLayout(block));
        const QTextLayout& layout = *shortLayouts_.back();
        for (int i = 0; i < layout.lineCount(); ++i) {
            widest = std::max(widest, layout.lineAt(i).naturalTextWidth());
        }
    }
    // A line can be wider than the room for it: when one character is.
    width_ = ceilPixels(widest, format_.ratio);
    for (size_t i = 0; i < blocks_.size(); ++i)
        placeLines(blocks_[i], *shortLayouts_[i]);
    heights_.assign(
        count, [&](qsizetype i) { return layoutHeight(*shortLayouts_[static_cast<size_t>(i)]); });
}

int LaidOutText::height() const {
    return static_cast<int>(
        std::min<qint64>(heights_.total() - spacing_, std::numeric_limits<int>::max() / 2));
}

int LaidOutText::lineHeight(const QTextLine& line) const {
    return ceilPixels(std::max(line.ascent(), ascent_) + std::max(line.descent(), descent_),
                      format_.ratio);
}

int LaidOutText::lead(const QTextLine& line) const {
    return static_cast<int>(std::lround(std::max(ascent_ - line.ascent(), 0.0) * format_.ratio));
}

int LaidOutText::lineTop(const QTextLine& line) const {
    return static_cast<int>(std::lround(line.y() * format_.ratio)) - lead(line);
}

std::unique_ptr<QTextLayout> LaidOutText::makeLayout(const TextBlock& block) const {
    const EmojiText content =
        findEmoji(QString::fromRawData(text_.constData() + block.start, block.length));
    auto layout = std::make_unique<QTextLayout>(content.shown, format_.font);
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(block.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    layout->setTextOption(option);
    QList<QTextLayout::FormatRange> formats = emojiFormats(content.ranges, format_.emojiFamily);
    if (format_.isUnderlined) {
        QTextCharFormat underline;
        underline.setFontUnderline(true);
        formats.push_back({0, block.length, underline});
    }
    layout->setFormats(formats);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLineWidth(maxWidth_ / format_.ratio);
    }
    layout->endLayout();
    return layout;
}

void LaidOutText::placeLines(const TextBlock& block, QTextLayout& layout) const {
    int y = 0;
    for (int i = 0; i < layout.lineCount(); ++i) {
        QTextLine line = layout.lineAt(i);
        const qreal room = width_ / format_.ratio - line.naturalTextWidth();
        const qreal x = format_.isCentered ? room / 2 : block.rightToLeft ? room : 0;
        line.setPosition(QPointF(std::max(x, 0.0), (y + lead(line)) / format_.ratio));
        y += lineHeight(line) + spacing_;
    }
}

int LaidOutText::layoutHeight(const QTextLayout& layout) const {
    int height = 0;
    for (int i = 0; i < layout.lineCount(); ++i)
        height += lineHeight(layout.lineAt(i)) + spacing_;
    return height;
}

int LaidOutText::estimatedHeight(const TextBlock& block) const {
    const auto lines = static_cast<int>(std::ceil(block.length * estimatedCharacter_ / maxWidth_));
    return std::max(lines, 1) * estimatedLine_;
}

QTextLayout& LaidOutText::layout(qsizetype block) const {
    if (!isLong_) return *shortLayouts_[static_cast<size_t>(block)];
    if (QTextLayout* known = longLayouts_.object(block)) return *known;
    const TextBlock& content = blocks_[static_cast<size_t>(block)];
    QTextLayout* made = makeLayout(content).release();
    placeLines(content, *made);
    longLayouts_.insert(block, made, content.length + 64);
    return *made;
}

qsizetype LaidOutText::blockOf(qsizetype offset) const {
    const auto after =
        std::upper_bound(blocks_.begin(), blocks_.end(), offset,
                         [](qsizetype o, const TextBlock& block) { return o < block.start; });
    return std::max<qsizetype>(after - blocks_.begin() - 1, 0);
}

bool LaidOutText::measureBlock(qsizetype block) {
    if (isMeasured(block)) return false;
    isMeasured_[static_cast<size_t>(block)] = true;
    const int height = layoutHeight(layout(block));
    if (height == heights_.height(block)) return false;
    heights_.setHeight(block, height);
    return true;
}

std::optional<qsizetype> LaidOutText::firstEstimated(qsizetype from) const {
    const auto found =
        std::find(isMeasured_.begin() + std::min<qsizetype>(from, isMeasured_.size()),
                  isMeasured_.end(), false);
    if (found == isMeasured_.end()) return std::nullopt;
    return found - isMeasured_.begin();
}

void LaidOutText::paint(QPainter& painter, QPoint origin, int top, int bottom) const {
    for (qsizetype i = blockAt(top); i < blockCount() && blockTop(i) < bottom; ++i) {
        // The next block starts where the estimate ends: drawing this one might cover it.
        if (!isMeasured(i)) continue;
        const auto y = static_cast<int>(blockTop(i));
        // A layout places lines with 26 bits before the point: the painter takes them down instead.
        painter.save();
        painter.translate(origin.x(), origin.y() + y);
        painter.scale(format_.ratio, format_.ratio);
        const QRectF clip(0, (top - y) / format_.ratio, width_ / format_.ratio,
                          (bottom - top) / format_.ratio);
        layout(i).draw(&painter, QPointF(0, 0), {}, clip);
        painter.restore();
    }
}

void LaidOutText::forEachLine(int top, int bottom, const LineVisitor& visit) const {
    for (qsizetype i = blockAt(top); i < blockCount() && blockTop(i) < bottom; ++i) {
        if (!isMeasured(i)) continue;
        const TextBlock& block = blocks_[static_cast<size_t>(i)];
        const QStringView content = QStringView(text_).sliced(block.start, block.length);
        const auto blockY = static_cast<int>(blockTop(i));
        const QTextLayout& lines = layout(i);
        for (int n = 0; n < lines.lineCount(); ++n) {
            const QTextLine line = lines.lineAt(n);
            const int y = blockY + lineTop(line);
            if (y + lineHeight(line) > top && y < bottom) visit(line, content, blockY);
        }
    }
}

std::vector<QRect> LaidOutText::region(TextRange range, int top, int bottom) const {
    std::vector<QRect> rects;
    const int breakWidth = ceilPixels(lineBreakPoints, format_.ratio);
    for (qsizetype i = blockAt(top); i < blockCount() && blockTop(i) < bottom; ++i) {
        const TextBlock& block = blocks_[static_cast<size_t>(i)];
        if (range.to <= block.start) break;
        if (!isMeasured(i)) continue;
        const auto first = static_cast<int>(std::max<qsizetype>(range.from - block.start, 0));
        const auto end =
            static_cast<int>(std::min<qsizetype>(range.to - block.start, block.length));
        const QTextLayout& lines = layout(i);
        for (int n = 0; n < lines.lineCount(); ++n) {
            const QTextLine line = lines.lineAt(n);
            const auto y = static_cast<int>(blockTop(i)) + lineTop(line);
            const int height = lineHeight(line);
            if (y >= bottom || line.textStart() > end) break;
            if (y + height < top) continue;
            for (const auto& [left, right] : stretches(line, first, end)) {
                const auto x = static_cast<int>(std::floor(left * format_.ratio));
                const int width = ceilPixels(right, format_.ratio) - x;
                rects.emplace_back(x, y, std::max(width, breakWidth), height);
            }
        }
    }
    return rects;
}

TextRange LaidOutText::offsetsBetween(int top, int bottom) const {
    if (blockCount() == 0) return {0, 0};
    const TextBlock& first = blocks_[static_cast<size_t>(blockAt(top))];
    const auto last = static_cast<size_t>(blockAt(bottom) + 1);
    return {first.start, last < blocks_.size() ? blocks_[last].start : text_.size()};
}

QTextLine LaidOutText::lineAt(const QTextLayout& layout, int y) const {
    int i = 0;
    for (int bottom = 0; i + 1 < layout.lineCount(); ++i) {
        bottom += lineHeight(layout.lineAt(i)) + spacing_;
        if (y < bottom) break;
    }
    return layout.lineAt(i);
}

LaidOutText::Line LaidOutText::line(qint64 y) const {
    const qsizetype block = blockAt(y);
    const QTextLine found = lineAt(layout(block), static_cast<int>(y - blockTop(block)));
    return {blocks_[static_cast<size_t>(block)].start + found.textStart(),
            blockTop(block) + lineTop(found)};
}

qsizetype LaidOutText::hit(QPoint point, QTextLine::CursorPosition where) const {
    if (point.y() < 0) return 0;
    if (point.y() >= heights_.total()) return text_.size();
    const qsizetype block = blockAt(point.y());
    const QTextLine line = lineAt(layout(block), static_cast<int>(point.y() - blockTop(block)));
    return blocks_[static_cast<size_t>(block)].start +
           line.xToCursor(point.x() / format_.ratio, where);
}

qsizetype LaidOutText::offsetAt(QPoint point) const {
    return hit(point, QTextLine::CursorBetweenCharacters);
}

qsizetype LaidOutText::characterAt(QPoint point) const {
    return hit(point, QTextLine::CursorOnCharacter);
}

TextRange LaidOutText::lineAround(qsizetype offset) const {
    const qsizetype index = blockOf(offset);
    const TextBlock& block = blocks_[static_cast<size_t>(index)];
    const auto inBlock =
        static_cast<int>(std::clamp<qsizetype>(offset - block.start, 0, block.length));
    const QTextLine line = layout(index).lineForTextPosition(inBlock);
    if (!line.isValid()) return {block.start, block.start + block.length};
    const qsizetype start = block.start + line.textStart();
    return {start, start + line.textLength()};
}

bool LaidOutText::isRightToLeft(qsizetype offset) const {
    return blocks_[static_cast<size_t>(blockOf(offset))].rightToLeft;
}

bool LaidOutText::isOnText(QPoint point) const {
    if (point.y() < 0 || point.y() >= height()) return false;
    const qsizetype block = blockAt(point.y());
    const QTextLine line = lineAt(layout(block), static_cast<int>(point.y() - blockTop(block)));
    const qreal x = point.x() / format_.ratio - line.x();
    return x >= 0 && x <= line.naturalTextWidth();
}

QRect LaidOutText::caret(qsizetype offset) const {
    const qsizetype block = blockOf(offset);
    const TextBlock& content = blocks_[static_cast<size_t>(block)];
    const QTextLayout& lines = layout(block);
    const auto inBlock =
        static_cast<int>(std::clamp<qsizetype>(offset - content.start, 0, content.length));
    const QTextLine line = lines.lineForTextPosition(inBlock);
    const auto x = static_cast<int>(std::lround(line.cursorToX(inBlock) * format_.ratio));
    return QRect(x, static_cast<int>(blockTop(block)) + lineTop(line), 1, lineHeight(line));
}

}  // namespace vell
