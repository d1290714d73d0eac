// SPDX-License-Identifier: MIT
#include "app/documents/jump_history.h"

#include <QMouseEvent>

namespace vell {
namespace {

constexpr size_t mostPlaces = 100;

}  // namespace

JumpHistory::JumpHistory(QObject* parent)
    : QObject(parent), backAction_(tr("&Back")), forwardAction_(tr("&Forward")) {
    backAction_.setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
    forwardAction_.setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
    connect(&backAction_, &QAction::triggered, this, &JumpHistory::goBack);
    connect(&forwardAction_, &QAction::triggered, this, &JumpHistory::goForward);
    update();
}

void JumpHistory::attach(TimelineView& timeline) {
    timeline_ = &timeline;
    back_.clear();
    forward_.clear();
    update();
    connect(&timeline, &TimelineView::jumped, this, &JumpHistory::add);
    timeline.viewport()->installEventFilter(this);
}

void JumpHistory::jump(const std::function<void()>& move) {
    const TimelinePlace before = timeline_->scroller().place();
    move();
    add(before);
}

void JumpHistory::add(const TimelinePlace& left) {
    if (left == timeline_->scroller().place()) return;
    if (back_.size() >= mostPlaces) back_.erase(back_.begin());
    back_.push_back(left);
    forward_.clear();
    update();
}

void JumpHistory::mapRows(const TimelineView::RowMap& rowOf) {
    for (Places* places : {&back_, &forward_}) {
        for (TimelinePlace& place : *places)
            place.row = rowOf(place.row);
    }
}

void JumpHistory::go(Places& from, Places& to) {
    if (from.empty()) return;
    const TimelinePlace target = from.back();
    from.pop_back();
    to.push_back(timeline_->scroller().place());
    timeline_->scroller().scrollToRow(target.row, target.pointsAbove);
    update();
}

void JumpHistory::update() {
    backAction_.setEnabled(!back_.empty());
    forwardAction_.setEnabled(!forward_.empty());
}

bool JumpHistory::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        const Qt::MouseButton button = static_cast<const QMouseEvent*>(event)->button();
        if (button == Qt::BackButton || button == Qt::ForwardButton) {
            button == Qt::BackButton ? goBack() : goForward();
            return true;
        }
    }
    return QObject::eventFilter(object, event);
}

}  // namespace vell
