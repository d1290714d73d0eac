#pragma once
// SPDX-License-Identifier: MIT
//
// Selecting: how mouse and keyboard select text in a timeline. It watches the view's events, so the
// view itself knows nothing of it but what to paint.
//
//     press, drag          characters, across rows; beyond the edges the timeline scrolls
//     double, triple click words, paragraphs
//     Shift with a click or the cursor keys moves the selection's free end

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <vector>

#include "timeline/input/selection.h"
#include "timeline/text/text_range.h"

class QKeyEvent;
class QMouseEvent;

namespace vell {

class TimelineView;

class Selecting final : public QObject {
    Q_OBJECT

  public:
    /// Watches the view, which must outlive it.
    explicit Selecting(TimelineView& view);

    [[nodiscard]] const Selection& selection() const { return selection_; }
    void selectAll();
    void clear();
    /// Whether there is a selection to drop; a row's copy command wants to know, too.
    [[nodiscard]] bool isEmpty() const { return isEmpty_; }

    /// Sorted by row and start; `current` is an index, -1 for none.
    void setFindMatches(std::vector<TextRange> matches, qsizetype current);
    /// What is highlighted of the offsets [from, to) of a row; holds until the next call.
    [[nodiscard]] std::span<const TextHighlight> highlights(qsizetype row, qsizetype from,
                                                            qsizetype to);

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void changed();

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    bool press(const QMouseEvent& event);
    void drag(QPoint point);
    bool release();
    [[nodiscard]] TextUnit clickUnit(const QMouseEvent& event);
    bool key(const QKeyEvent& event);
    [[nodiscard]] std::optional<TextPosition> moved(TextPosition from, const QKeyEvent& event);
    [[nodiscard]] TextPosition movedAcross(TextPosition from, bool forward, TextUnit unit);
    [[nodiscard]] TextPosition movedByLine(TextPosition from, int step);
    void update();

    TimelineView& view_;
    Selection selection_;
    bool isEmpty_ = true;
    std::vector<TextRange> matches_;
    qsizetype currentMatch_ = -1;
    std::vector<TextHighlight> highlights_;

    bool isDragging_ = false;
    QPoint pointer_;
    QBasicTimer scrollTimer_;
    QElapsedTimer sinceClick_;
    QPoint clickPlace_;
    int clicks_ = 0;
};

}  // namespace vell
