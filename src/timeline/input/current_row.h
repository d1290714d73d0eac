#pragma once
// SPDX-License-Identifier: MIT
//
// CurrentRow: the row that the keyboard is at, the ring around it, and the keys that move it. It
// watches the view's events.
//
//     up, down                  the next row; of one that is higher than the window the next lines
//     page up, page down, space a page
//     home, end                 the first and the last row
//     return, menu key          what a click on the row does, and its context menu

#include <QObject>

class QContextMenuEvent;
class QKeyEvent;
class QPainter;

namespace vell {

class Pointing;
class TimelineView;

class CurrentRow final : public QObject {
    Q_OBJECT

  public:
    /// Watches the view; both must outlive it.
    CurrentRow(TimelineView& view, Pointing& pointing);

    /// -1 before any row was chosen.
    [[nodiscard]] qsizetype index() const { return index_; }
    /// Shows a row and makes it the current one; going up, the end of a high row is shown.
    void goTo(qsizetype row, int direction);
    /// Paints the ring, if the keyboard is in use; the painter counts the viewport's device pixels.
    void paint(QPainter& painter) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void changed(qsizetype row);

  private:
    bool key(const QKeyEvent& event);
    void step(int direction);
    void page(int direction);
    void choose(qsizetype row, bool showRing);
    /// The current row, or the nearest to it that is on the screen.
    [[nodiscard]] qsizetype onScreen(int direction) const;
    [[nodiscard]] bool isOnScreen(qsizetype row) const;
    [[nodiscard]] qsizetype neighbour(qsizetype row, int direction) const;

    TimelineView& view_;
    Pointing& pointing_;
    qsizetype index_ = -1;
    bool isRingShown_ = false;
};

}  // namespace vell
