// SPDX-License-Identifier: MIT
#include "timeline/painting/row_painter.h"

#include <QPainter>
#include <QWidget>
#include <cmath>
#include <utility>

#include "timeline/bubbles/background_cache.h"
#include "timeline/input/selection_controller.h"
#include "timeline/pictures/gif_player.h"

namespace vell {

void RowPainter::refresh(const Overlays& overlays) {
    VisiblePieces pieces = visiblePieces(layout_, context_, selection_, player_);
    const Repaint repaint =
        repaintFor(shown_, pieces, context_.touchedPixels(viewport_.rect()).size(), context_);
    shown_ = std::move(pieces);
    const Overlays before = std::exchange(overlays_, overlays);
    if (!repaint.moved || !movePixels(*repaint.moved)) {
        viewport_.update();
        return;
    }
    update(repaint.lines);
    const QRect ring = before.ring.translated(0, *repaint.moved);
    if (ring != overlays.ring) update(QRegion(ring) + overlays.ring);
    update(QRegion(before.day.translated(0, *repaint.moved)) + overlays.day);
}

bool RowPainter::movePixels(int down) {
    const qreal points = down / context_.ratio;
    const int whole = qRound(points);
    if (std::abs(points - whole) > 1e-6) return false;
    if (whole != 0) viewport_.scroll(0, whole, viewport_.rect());
    return true;
}

void RowPainter::update(const QRegion& pixels) {
    for (const QRect& rect : pixels)
        viewport_.update(context_.touchedPoints(rect));
}

void RowPainter::prepare(const QRegion& region) {
    VisiblePieces pieces = visiblePieces(layout_, context_, selection_, player_);
    if (pieces == shown_) return;
    shown_ = std::move(pieces);
    if (region != viewport_.rect()) viewport_.update();
}

void RowPainter::paint(QPainter& painter, const QRect& part) const {
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
    // Shadows reach a little beyond their rows, and highlights beyond their lines.
    const int around = context_.px(standardSpacing);
    for (const TimelineLayout::VisibleRow& visible : layout_.visibleRows()) {
        const RowLayout& layout = visible.row->layout;
        const QRect inRow = part.translated(-left, -visible.top);
        if (inRow.top() > layout.height + around || inRow.bottom() < -around) continue;
        const int above = layout.content.top();
        const TextRange shown =
            layout.text ? layout.text->offsetsBetween(inRow.top() - above - around,
                                                      inRow.bottom() + 1 - above + around)
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
