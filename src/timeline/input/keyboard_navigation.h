#pragma once
// SPDX-License-Identifier: MIT
//
// KeyboardNavigation: the row that the keyboard is at, the ring around it, and the keys that move
// it.
//
//     up, down                  the next row; of one that is higher than the window the next lines
//     page up, page down, space a page
//     home, end                 the first row, and the last with all that is below it
//     return, menu key          what a click on the row does, and its context menu

#include <QObject>
#include <QRect>
#include <optional>

#include "timeline/rows/row_context.h"

class QAbstractScrollArea;
class QKeyEvent;
class QPainter;

namespace vell {

class RowInteraction;
class TimelineLayout;
class TimelineScroller;
struct RowPlace;
struct TimelinePlace;

class KeyboardNavigation final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it.
    KeyboardNavigation(QAbstractScrollArea& area, TimelineLayout& layout, const RowContext& context,
                       TimelineScroller& scroller, RowInteraction& rows);

    /// The current row; -1 before any was chosen.
    /// The row has another number now.
    void setRow(qsizetype row) { row_ = row; }
    [[nodiscard]] qsizetype row() const { return row_; }
    /// Shows a row and makes it the current one; going up, the end of a high row is shown.
    void goTo(qsizetype row, int direction);
    /// What the ring touches, in the viewport's device pixels; empty while it isn't shown.
    [[nodiscard]] QRect ringArea() const;
    /// Paints the ring, if the keyboard is in use; the painter counts the viewport's device pixels.
    void paint(QPainter& painter) const;

    /// Returns whether the key was one of those above.
    bool key(const QKeyEvent& event);
    /// A press of the mouse makes its row the current one, without a ring.
    void press(const std::optional<RowPlace>& place);
    /// Coming by the Tab key shows the ring.
    void focusIn(Qt::FocusReason reason);
    void showMenu();

  Q_SIGNALS:
    void changed(qsizetype row);
    /// A key has led to the first or the last row, from this place.
    void jumped(const vell::TimelinePlace& left);

  private:
    [[nodiscard]] QRect ring() const;
    void step(int direction);
    void jump(qsizetype row, int direction);
    void page(int direction);
    void goToEnd();
    /// The first (-1) or last (1) row that is wholly on the screen; where none is, the one that is
    /// partly there.
    [[nodiscard]] qsizetype wholeRow(int from) const;
    void choose(qsizetype row, bool showRing);
    /// The current row, or the nearest to it that is on the screen.
    [[nodiscard]] qsizetype onScreen(int direction) const;
    [[nodiscard]] bool isCaption(qsizetype row) const;
    [[nodiscard]] qsizetype neighbour(qsizetype row, int direction) const;

    QAbstractScrollArea& area_;
    TimelineLayout& layout_;
    const RowContext& context_;
    TimelineScroller& scroller_;
    RowInteraction& rows_;
    qsizetype row_ = -1;
    bool isRingShown_ = false;
};

}  // namespace vell
