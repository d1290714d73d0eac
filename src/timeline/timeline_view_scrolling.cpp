// SPDX-License-Identifier: MIT
//
// Where the timeline is: going to places, the scroll bar and the wheel.
#include <QApplication>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr int frameMilliseconds = 8;
constexpr qreal wheelLinePoints = 20;
constexpr int mostReveals = 4;
constexpr qreal highestRow = 1e9;  // points, more than any

}  // namespace

qsizetype TimelineView::topRow() const {
    return isBuilt_ ? std::max<qsizetype>(layout_.rowAt(0), 0) : wantedRow_;
}

qreal TimelineView::pointsAbove() const {
    return isBuilt_ ? static_cast<qreal>(-layout_.rowTop(topRow())) / ratio() : wantedPointsAbove_;
}

void TimelineView::scrollToRow(qsizetype index, qreal pointsAbove) {
    if (!isBuilt_) {
        wantedRow_ = index;
        wantedPointsAbove_ = pointsAbove;
        return;
    }
    if (index < 0 || index >= layout_.rowCount()) return;
    smoothScroll_.stop();
    // What settings hold may be anything, NaN included.
    const qreal points = pointsAbove > 0 ? std::min(pointsAbove, highestRow) : 0;
    layout_.scrollToRow(index, qRound64(points * ratio()));
    moved();
}

void TimelineView::scrollByPixels(qint64 pixels) {
    smoothScroll_.stop();
    layout_.scrollBy(pixels);
    moved();
}

void TimelineView::reveal(qsizetype row, const QRect& part) {
    smoothScroll_.stop();
    layout_.reveal(row, part);
    moved();
}

void TimelineView::revealText(const TextRange& range) {
    if (!isBuilt_) {
        scrollToRow(range.row);
        return;
    }
    if (range.row < 0 || range.row >= layout_.rowCount()) return;
    smoothScroll_.stop();
    const int around = context_.px(standardPadding);
    // On the way there the blocks of a long text get their heights, so that the goal may move.
    for (int tries = 0; tries < mostReveals; ++tries) {
        const QRect end = layout_.exactCaret(range.row, range.start + range.length);
        const QRect start = layout_.exactCaret(range.row, range.start);
        layout_.reveal(range.row, start.united(end).adjusted(0, -around, 0, around));
        const qint64 top =
            layout_.rowTop(range.row) + layout_.exactCaret(range.row, range.start).top();
        if (top >= 0 && top < layout_.viewportHeight()) break;
    }
    moved();
}

void TimelineView::moved() {
    syncScrollBar();
    restartIdlePass();
    viewport()->update();
    stopUnseenPicture();
}

void TimelineView::syncScrollBar() {
    // Nothing moves under the mouse of a person who holds the slider.
    QScrollBar* bar = verticalScrollBar();
    if (bar->isSliderDown()) return;
    mapping_ = {layout_.contentHeight(), layout_.viewportHeight()};
    isSyncing_ = true;
    bar->setRange(0, mapping_.maximum());
    bar->setPageStep(mapping_.pageStep());
    bar->setSingleStep(static_cast<int>(
        std::max<qint64>(context_.px(wheelLinePoints) / mapping_.pixelsPerValue(), 1)));
    bar->setValue(mapping_.toValue(layout_.offset()));
    isSyncing_ = false;
}

void TimelineView::scrollContentsBy(int, int) {
    if (isSyncing_ || !isBuilt_) return;
    smoothScroll_.stop();
    const QScrollBar* bar = verticalScrollBar();
    const qint64 wanted = mapping_.toOffset(bar->value());
    if (bar->isSliderDown()) {
        // The bar still has the heights of the moment in which the slider was taken.
        const qint64 last = mapping_.lastOffset();
        const qint64 lastNow = layout_.contentHeight() - layout_.viewportHeight();
        layout_.scrollTo(wanted == last
                             ? lastNow
                             : std::llround(static_cast<double>(wanted) * lastNow /
                                            static_cast<double>(std::max<qint64>(last, 1))));
    } else {
        layout_.scrollBy(wanted - layout_.offset());
    }
    moved();
}

void TimelineView::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        event->ignore();
        return;
    }
    event->accept();
    if (!event->pixelDelta().isNull()) {
        smoothScroll_.stop();
        layout_.scrollBy(-std::lround(event->pixelDelta().y() * ratio()));
        moved();
    } else {
        const double notches = event->angleDelta().y() / 120.0;
        scrollSmoothly(-notches * QApplication::wheelScrollLines() * wheelLinePoints * ratio());
    }
}

void TimelineView::scrollSmoothly(double pixels) {
    smoothScroll_.add(pixels);
    if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) <= 0) {
        layout_.scrollBy(std::llround(pixels));
        smoothScroll_.stop();
        moved();
        return;
    }
    if (frameTimer_.isActive()) return;
    frameClock_.start();
    frameTimer_.start(frameMilliseconds, Qt::PreciseTimer, this);
}

}  // namespace vell
