// SPDX-License-Identifier: MIT
#include "timeline/layout/timeline_scroller.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QScrollBar>
#include <QStyle>
#include <QTimerEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "timeline/layout/timeline_layout.h"
#include "timeline/layout/timeline_scroll_bar.h"

namespace vell {
namespace {

// The idle pass begins this long after the last scrolling and works in slices, in milliseconds. A
// slice may overrun by the longest row that is laid out at once.
constexpr int idlePause = 200;
constexpr int idleSlice = 4;

constexpr int frameMilliseconds = 8;
constexpr qreal wheelLinePoints = 20;
constexpr qreal pageOverlap = 40;
constexpr int mostReveals = 4;
constexpr qreal highestRow = 1e9;  // points, more than any

}  // namespace

TimelineScroller::TimelineScroller(QAbstractScrollArea& area, TimelineLayout& layout,
                                   const RowContext& context)
    : area_(area), layout_(layout), context_(context) {
    area_.setVerticalScrollBar(new TimelineScrollBar(Qt::Vertical));
}

qsizetype TimelineScroller::topRow() const {
    return isReady_ ? std::max<qsizetype>(layout_.rowAt(0), 0) : wantedRow_;
}

qreal TimelineScroller::pointsAbove() const {
    return isReady_ ? static_cast<qreal>(-layout_.rowTop(topRow())) / context_.ratio
                    : wantedPointsAbove_;
}

void TimelineScroller::scrollToRow(qsizetype index, qreal pointsAbove) {
    if (!isReady_) {
        wantedRow_ = index;
        wantedPointsAbove_ = pointsAbove;
        return;
    }
    if (index < 0 || index >= layout_.rowCount()) return;
    smoothScroll_.stop();
    // What settings hold may be anything, NaN included.
    const qreal points = pointsAbove > 0 ? std::min(pointsAbove, highestRow) : 0;
    layout_.scrollToRow(index, qRound64(points * context_.ratio));
    update();
}

void TimelineScroller::scrollToEnd() {
    smoothScroll_.stop();
    layout_.scrollTo(layout_.contentHeight());
    update();
}

void TimelineScroller::scrollByPixels(qint64 pixels) {
    smoothScroll_.stop();
    layout_.scrollBy(pixels);
    update();
}

int TimelineScroller::pagePixels() const {
    return std::max(layout_.viewportHeight() - context_.px(pageOverlap), 1);
}

void TimelineScroller::reveal(qsizetype row, const QRect& part) {
    smoothScroll_.stop();
    layout_.reveal(row, part);
    update();
}

void TimelineScroller::revealText(const TextSpan& span) {
    const qsizetype row = span.from.row;
    if (!isReady_) {
        scrollToRow(row);
        return;
    }
    if (row < 0 || row >= layout_.rowCount()) return;
    smoothScroll_.stop();
    const int around = context_.px(standardPadding);
    // On the way there the blocks of a long text get their heights, so that the goal may move.
    for (int tries = 0; tries < mostReveals; ++tries) {
        const QRect end = layout_.exactCaret(row, span.to.offset);
        const QRect start = layout_.exactCaret(row, span.from.offset);
        layout_.reveal(row, start.united(end).adjusted(0, -around, 0, around));
        const qint64 top = layout_.rowTop(row) + layout_.exactCaret(row, span.from.offset).top();
        if (top >= 0 && top < layout_.viewportHeight()) break;
    }
    update();
}

void TimelineScroller::reset() {
    isReady_ = true;
    if (wantedRow_ > 0 || wantedPointsAbove_ > 0)
        scrollToRow(std::exchange(wantedRow_, 0), std::exchange(wantedPointsAbove_, 0));
    update();
}

void TimelineScroller::update() {
    syncScrollBar();
    idleTimer_.start(idlePause, this);
    Q_EMIT moved();
}

void TimelineScroller::syncScrollBar() {
    // The bar stays as it is while the user holds the slider.
    QScrollBar* bar = area_.verticalScrollBar();
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

void TimelineScroller::followScrollBar() {
    if (isSyncing_ || !isReady_) return;
    smoothScroll_.stop();
    const QScrollBar* bar = area_.verticalScrollBar();
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
    update();
}

void TimelineScroller::scrollByWheel(const QWheelEvent& event) {
    if (!event.pixelDelta().isNull()) {
        smoothScroll_.stop();
        layout_.scrollBy(-std::lround(event.pixelDelta().y() * context_.ratio));
        update();
    } else {
        const double notches = event.angleDelta().y() / 120.0;
        scrollSmoothly(-notches * QApplication::wheelScrollLines() * wheelLinePoints *
                       context_.ratio);
    }
}

void TimelineScroller::scrollSmoothly(double pixels) {
    smoothScroll_.add(pixels);
    if (area_.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &area_) <= 0) {
        layout_.scrollBy(std::llround(pixels));
        smoothScroll_.stop();
        update();
        return;
    }
    if (frameTimer_.isActive()) return;
    frameClock_.start();
    frameTimer_.start(frameMilliseconds, Qt::PreciseTimer, this);
}

// By multiples of this many pixels painted rows can be moved, and needn't be painted again.
int TimelineScroller::wholePoints() const {
    for (int points = 1; points <= 4; ++points) {
        const qreal pixels = points * context_.ratio;
        if (pixels == std::floor(pixels)) return static_cast<int>(pixels);
    }
    return 1;
}

void TimelineScroller::timerEvent(QTimerEvent* event) {
    if (event->timerId() == frameTimer_.timerId()) {
        const double elapsed = static_cast<double>(frameClock_.nsecsElapsed()) / 1e6;
        frameClock_.restart();
        layout_.scrollBy(smoothScroll_.step(elapsed, wholePoints()));
        if (!smoothScroll_.isMoving()) frameTimer_.stop();
        update();
    } else if (event->timerId() == idleTimer_.timerId()) {
        idleTimer_.start(0, this);
        if (!layout_.makeExact(QDeadlineTimer(idleSlice))) idleTimer_.stop();
        syncScrollBar();
    }
}

}  // namespace vell
