// SPDX-License-Identifier: MIT
#include "timeline/painting/row_painter.h"

#include <QPainter>
#include <utility>

#include "timeline/bubbles/background_cache.h"
#include "timeline/input/selection_controller.h"
#include "timeline/pictures/gif_player.h"

namespace vell {

void RowPainter::reset() {
    image_.clear();
    painted_ = {};
}

void RowPainter::paint(QPainter& painter, QSize viewport, const QRect& part) {
    update(viewport);
    if (image_.isNull()) {
        paintAll(painter, part);
    } else {
        image_.draw(painter, part);
    }
}

void RowPainter::update(QSize viewport) {
    VisiblePieces pieces = visiblePieces(layout_, context_, selection_, player_);
    Repaint repaint = repaintFor(painted_, pieces, viewport, context_);
    painted_ = std::move(pieces);
    if (image_.size() != viewport) {
        // What isn't scrolled is painted where it is shown, and needs no memory.
        image_.clear();
        if (repaint.moved.value_or(0) == 0) return;
        image_.create(viewport);
        repaint = {std::nullopt, QRect(QPoint(0, 0), viewport)};
    }
    if (repaint.moved) image_.scrollDown(*repaint.moved);
    for (const QRect& lines : repaint.lines) {
        image_.paint(lines.top(), lines.bottom() + 1,
                     [this](QPainter& painter, const QRect& part) { paintAll(painter, part); });
    }
}

void RowPainter::paintAll(QPainter& painter, const QRect& part) const {
    paintBackground(painter, part);
    paintRows(painter, part);
}

// A bubble that is higher than the window hides most of what would be filled below it.
void RowPainter::paintBackground(QPainter& painter, const QRect& part) const {
    QRegion free(part);
    for (const TimelineLayout::VisibleRow& visible : layout_.visibleRows()) {
        free -= opaquePart(visible.row->layout.frame, context_.ratio)
                    .translated(layout_.rowLeft(), visible.top);
    }
    for (const QRect& rect : free)
        painter.fillRect(rect, context_.colors.background);
}

void RowPainter::paintRows(QPainter& painter, const QRect& part) const {
    const int left = layout_.rowLeft();
    // Shadows reach a little beyond their rows.
    const int around = context_.px(standardSpacing);
    for (const TimelineLayout::VisibleRow& visible : layout_.visibleRows()) {
        const RowLayout& layout = visible.row->layout;
        const QRect inRow = part.translated(-left, -visible.top);
        if (inRow.top() > layout.height + around || inRow.bottom() < -around) continue;
        const int above = layout.content.top();
        const TextRange shown = layout.text ? layout.text->offsetsBetween(
                                                  inRow.top() - above, inRow.bottom() + 1 - above)
                                            : TextRange{0, 1};
        painter.save();
        painter.translate(left, visible.top);
        visible.row->view.paint(painter, layout, context_,
                                {visible.index, inRow, selection_.highlights(visible.index, shown),
                                 player_.frame(visible.index)});
        painter.restore();
    }
}

}  // namespace vell
