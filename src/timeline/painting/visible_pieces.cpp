// SPDX-License-Identifier: MIT
#include "timeline/painting/visible_pieces.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "timeline/bubbles/fancy_background.h"
#include "timeline/input/selection_controller.h"
#include "timeline/pictures/gif_player.h"
#include "timeline/rows/bubble_layout.h"

namespace vell {
namespace {

using Row = TimelineLayout::VisibleRow;

// The colours of long bubbles are compared in bands of this many lines.
constexpr int bandHeight = 64;

qint64 frameKey(const GifPlayer& player, qsizetype row) {
    const QImage* frame = player.frame(row);
    return frame ? frame->cacheKey() : player.row() == row ? -1 : 0;
}

std::vector<TextHighlight> cut(std::span<const TextHighlight> highlights, TextRange part) {
    std::vector<TextHighlight> cut;
    for (TextHighlight highlight : highlights) {
        highlight.range = {std::max(highlight.range.from, part.from),
                           std::min(highlight.range.to, part.to)};
        if (highlight.range.from < highlight.range.to) cut.push_back(highlight);
    }
    return cut;
}

/// Adds the blocks of a long row that are on the screen.
void addBlocks(std::vector<VisiblePiece>& pieces, const Row& visible, int viewportHeight,
               SelectionController& selection) {
    const RowLayout& layout = visible.row->layout;
    const LaidOutText& text = *layout.text;
    const int textTop = visible.top + layout.content.top();
    for (qsizetype block = text.blockAt(-textTop); block < text.blockCount(); ++block) {
        const auto inText = static_cast<int>(text.blockTop(block));
        const bool isLast = block + 1 == text.blockCount();
        const int top = block == 0 ? visible.top : textTop + inText;
        const int bottom = isLast ? visible.top + layout.height
                                  : textTop + static_cast<int>(text.blockTop(block + 1));
        if (top >= viewportHeight) break;
        const TextRange part = text.offsetsBetween(inText, inText);
        pieces.push_back({{visible.index, block, visible.row->serial, 0, bottom - top,
                           cut(selection.highlights(visible.index, part), part)},
                          top});
    }
}

bool isBefore(const VisiblePiece::Look& a, const VisiblePiece::Look& b) {
    return std::pair(a.row, a.block) < std::pair(b.row, b.block);
}

bool isSamePlace(const VisiblePiece::Look& a, const VisiblePiece::Look& b) {
    return a.row == b.row && a.block == b.block && a.layout == b.layout;
}

std::optional<int> distanceMoved(std::span<const VisiblePiece> before,
                                 std::span<const VisiblePiece> after) {
    for (auto old = before.begin(), now = after.begin();
         old != before.end() && now != after.end();) {
        if (isSamePlace(old->look, now->look)) return now->top - old->top;
        isBefore(now->look, old->look) ? ++now : ++old;
    }
    return std::nullopt;
}

class Lines {
  public:
    Lines(QSize viewport, int around) : viewport_(viewport), around_(around) {}
    void add(int top, int bottom) {
        top = std::max(top, 0);
        bottom = std::min(bottom, viewport_.height());
        if (top < bottom) region_ += QRect(0, top, viewport_.width(), bottom - top);
    }
    void add(const VisiblePiece& piece, int moved = 0) {
        add(piece.top + moved - around_, piece.bottom() + moved + around_);
    }
    /// Where a bubble's colours aren't what they were.
    void addRecoloured(const LongBubble& old, const LongBubble& now, qreal ratio) {
        if (old.frame == now.frame) return;
        const FancyBackground background{ChatBubbleShape(ChatBubbleShape::Direction::left),
                                         Style::colors(now.aqua)};
        const QRect both = old.frame.united(now.frame);
        const int end = std::min(both.bottom() + 1 + around_, viewport_.height());
        for (int y = std::max(both.top() - around_, 0); y < end; y += bandHeight) {
            const bool isSame =
                looksAlike(background, {old.frame.height(), y - old.frame.top()},
                           {now.frame.height(), y - now.frame.top()}, bandHeight, ratio);
            if (!isSame) add(y, y + bandHeight);
        }
    }
    [[nodiscard]] QRegion region() const { return region_; }

  private:
    QSize viewport_;
    int around_;
    QRegion region_;
};

}  // namespace

VisiblePieces visiblePieces(const TimelineLayout& layout, const RowContext& context,
                            SelectionController& selection, const GifPlayer& player) {
    VisiblePieces all;
    for (const Row& visible : layout.visibleRows()) {
        const LaidOutText* text = visible.row->layout.text.get();
        if (text && text->isLong()) {
            addBlocks(all.pieces, visible, layout.viewportHeight(), selection);
            const auto* bubble = std::get_if<PlainMessageBubbleView>(&visible.row->view.content());
            if (bubble) {
                all.longBubbles.push_back({visible.index,
                                           visible.row->layout.frame.translated(0, visible.top),
                                           bubbleStyle(bubble->owner, context)});
            }
            continue;
        }
        const TextRange whole{0, text ? text->text().size() + 1 : 1};
        const auto highlights = selection.highlights(visible.index, whole);
        all.pieces.push_back({{visible.index,
                               0,
                               visible.row->serial,
                               frameKey(player, visible.index),
                               visible.row->layout.height,
                               {highlights.begin(), highlights.end()}},
                              visible.top});
    }
    return all;
}

Repaint repaintFor(const VisiblePieces& before, const VisiblePieces& after, QSize viewport,
                   const RowContext& context) {
    Repaint repaint{distanceMoved(before.pieces, after.pieces), QRect(QPoint(0, 0), viewport)};
    if (!repaint.moved || std::abs(*repaint.moved) >= viewport.height()) {
        repaint.moved.reset();
        return repaint;
    }
    const int moved = *repaint.moved;
    // Shadows reach a little beyond their rows.
    Lines lines(viewport, context.px(standardSpacing));
    // Between whole pixels the edges of what was moved are blurred.
    const bool isExact = context.ratio == std::floor(context.ratio);
    const int edge = isExact || moved == 0 ? 0 : context.px(2);
    lines.add(0, std::max(moved, 0) + edge);
    lines.add(viewport.height() + std::min(moved, 0) - edge, viewport.height());
    auto old = before.pieces.begin();
    auto now = after.pieces.begin();
    while (old != before.pieces.end() || now != after.pieces.end()) {
        if (now == after.pieces.end() ||
            (old != before.pieces.end() && isBefore(old->look, now->look))) {
            lines.add(*old++, moved);
        } else if (old == before.pieces.end() || isBefore(now->look, old->look)) {
            lines.add(*now++);
        } else {
            if (old->look != now->look || old->top + moved != now->top) {
                lines.add(*old, moved);
                lines.add(*now);
            }
            ++old;
            ++now;
        }
    }
    for (const LongBubble& bubble : after.longBubbles) {
        for (LongBubble earlier : before.longBubbles) {
            if (earlier.row != bubble.row) continue;
            earlier.frame.translate(0, moved);
            lines.addRecoloured(earlier, bubble, context.ratio);
        }
    }
    repaint.lines = lines.region();
    return repaint;
}

}  // namespace vell
