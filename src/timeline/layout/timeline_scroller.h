#pragma once
// SPDX-License-Identifier: MIT
//
// TimelineScroller: moves a timeline: to rows and texts, by the scroll bar and by the wheel. Once
// nothing has moved for a moment it lets the layout measure the rows that weren't shown yet.

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

#include "timeline/layout/scroll_mapping.h"
#include "timeline/layout/smooth_scroll.h"
#include "timeline/rows/row_context.h"
#include "timeline/text/text_range.h"

class QAbstractScrollArea;
class QRect;
class QWheelEvent;

namespace vell {

class TimelineLayout;

/// What is at the viewport's top edge.
struct TimelinePlace {
    qsizetype row = 0;
    qreal pointsAbove = 0;  ///< how much of the row is above that edge
    friend bool operator==(const TimelinePlace&, const TimelinePlace&) = default;
};

class TimelineScroller final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive the scroller, which gives the area its scroll bar. Until the first reset()
    /// it only remembers where to go.
    TimelineScroller(QAbstractScrollArea& area, TimelineLayout& layout, const RowContext& context);

    /// The row at the viewport's top edge.
    [[nodiscard]] qsizetype topRow() const;
    /// How many points of the top row are above that edge.
    [[nodiscard]] qreal pointsAbove() const;
    [[nodiscard]] TimelinePlace place() const { return {topRow(), pointsAbove()}; }
    /// Brings a row's top, or a place this many points below it, to the viewport's top edge, as far
    /// as there is enough below it.
    void scrollToRow(qsizetype index, qreal pointsAbove = 0);
    void scrollToEnd();
    /// Moves by device pixels of what is there.
    void scrollByPixels(qint64 pixels);
    /// What the page keys move by, in device pixels: some of the old page stays in view.
    [[nodiscard]] int pagePixels() const;
    /// Scrolls as little as needed to show part of a row, given in device pixels.
    void reveal(qsizetype row, const QRect& part);
    /// Scrolls as little as needed to show a span within one row.
    void revealText(const TextSpan& span);
    /// Moves by what the wheel says, over a few frames unless it counts pixels itself.
    void scrollByWheel(const QWheelEvent& event);
    /// Goes where the scroll bar is.
    void followScrollBar();

    /// To be called after the layout was reset.
    void reset();
    /// To be called after rows have changed: the scroll bar follows, and moved() is emitted.
    void update();

  Q_SIGNALS:
    /// Rows may have moved or changed: what shows them is to be painted.
    void moved();

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    void syncScrollBar();
    void scrollSmoothly(double pixels);
    [[nodiscard]] int wholePoints() const;

    QAbstractScrollArea& area_;
    TimelineLayout& layout_;
    const RowContext& context_;
    bool isReady_ = false;
    // Of a scrollToRow() before the first reset().
    qsizetype wantedRow_ = 0;
    qreal wantedPointsAbove_ = 0;

    ScrollMapping mapping_;  // as the scroll bar has it
    bool isSyncing_ = false;
    SmoothScroll smoothScroll_;
    QBasicTimer frameTimer_;
    QElapsedTimer frameClock_;
    QBasicTimer idleTimer_;
};

}  // namespace vell
