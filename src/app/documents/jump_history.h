#pragma once
// SPDX-License-Identifier: MIT
//
// JumpHistory: the places that the reader of a chat has left by jumping, for going back to them and
// forward again. Scrolling is no jump.
//
//     history.jump([&] { timeline.setCurrentRow(row); });

#include <QAction>
#include <QObject>
#include <functional>
#include <vector>

#include "timeline/timeline_view.h"

namespace vell {

class JumpHistory final : public QObject {
    Q_OBJECT

  public:
    explicit JumpHistory(QObject* parent = nullptr);

    /// There is nowhere to go yet. The jumps that the view makes itself are remembered, too;
    /// the mouse's buttons for going back and forward work on it.
    void attach(TimelineView& timeline);

    /// Moves the timeline by calling the function, and remembers the place it left. A jump that
    /// leads nowhere else is forgotten.
    void jump(const std::function<void()>& move);
    /// Remembers that a jump has just left this place.
    void add(const TimelinePlace& left);

    /// The rows have other numbers now.
    void mapRows(const TimelineView::RowMap& rowOf);

    void goBack() { go(back_, forward_); }
    void goForward() { go(forward_, back_); }
    /// Commands for a menu, enabled while there is somewhere to go.
    [[nodiscard]] QAction* backAction() { return &backAction_; }
    [[nodiscard]] QAction* forwardAction() { return &forwardAction_; }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    using Places = std::vector<TimelinePlace>;
    void go(Places& from, Places& to);
    void update();

    TimelineView* timeline_ = nullptr;
    Places back_;  // the latest last
    Places forward_;
    QAction backAction_;
    QAction forwardAction_;
};

}  // namespace vell
