// SPDX-License-Identifier: MIT
#include "timeline/input/current_row.h"

#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "timeline/input/pointing.h"
#include "timeline/input/row_place.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr qreal ringDistance = 3;  // points
constexpr qreal ringWidth = 2;
constexpr qreal ringCorner = 8;
constexpr qreal linePoints = 60;  // what an arrow key scrolls in a high row
constexpr qreal pageOverlap = 40;

QRect shownPart(const RowLayout& layout) {
    return layout.frame.isEmpty() ? layout.content : layout.frame;
}

}  // namespace

CurrentRow::CurrentRow(TimelineView& view, Pointing& pointing) : view_(view), pointing_(pointing) {
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
}

void CurrentRow::paint(QPainter& painter) const {
    if (!isRingShown_ || !view_.hasFocus() || !isOnScreen(index_)) return;
    TimelineLayout& timeline = view_.timeline();
    const RowContext& context = view_.context();
    const int distance = context.px(ringDistance);
    const QPoint corner(timeline.rowLeft(), static_cast<int>(timeline.rowTop(index_)));
    const QRect ring = shownPart(timeline.row(index_).layout)
                           .translated(corner)
                           .adjusted(-distance, -distance, distance, distance);
    // Painters fail at the edges of rows that are higher than some ten thousand pixels.
    const int around = context.px(pageOverlap);
    const QRect near = ring.intersected(
        QRect(ring.left(), -around, ring.width(), timeline.viewportHeight() + 2 * around));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(context.colors.highlight, ringWidth * context.ratio));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(near, ringCorner * context.ratio, ringCorner * context.ratio);
    painter.restore();
}

bool CurrentRow::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
            return watched == &view_ && key(*static_cast<QKeyEvent*>(event));
        case QEvent::FocusIn: {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason)
                choose(onScreen(1), true);
            view_.viewport()->update();
            return false;
        }
        case QEvent::FocusOut:
            view_.viewport()->update();
            return false;
        case QEvent::MouseButtonPress: {
            const auto* press = static_cast<QMouseEvent*>(event);
            const auto place =
                rowPlaceAt(view_.timeline(), view_.toDevice(press->position().toPoint()));
            if (watched != &view_ && place) choose(place->row, false);
            return false;
        }
        case QEvent::ContextMenu: {
            const auto* menu = static_cast<QContextMenuEvent*>(event);
            if (menu->reason() != QContextMenuEvent::Keyboard) return false;
            pointing_.showMenu(onScreen(1));
            return true;
        }
        default:
            return false;
    }
}

bool CurrentRow::key(const QKeyEvent& event) {
    if (view_.timeline().rowCount() == 0) return false;
    const bool isShifted = event.modifiers() & Qt::ShiftModifier;
    if (isShifted && event.key() != Qt::Key_Space) return false;
    switch (event.key()) {
        case Qt::Key_Up:
            step(-1);
            return true;
        case Qt::Key_Down:
            step(1);
            return true;
        case Qt::Key_PageUp:
            page(-1);
            return true;
        case Qt::Key_PageDown:
            page(1);
            return true;
        case Qt::Key_Space:
            page(isShifted ? -1 : 1);
            return true;
        case Qt::Key_Home:
            goTo(neighbour(-1, 1), 1);
            return true;
        case Qt::Key_End:
            goTo(neighbour(view_.timeline().rowCount(), -1), -1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose(onScreen(1), true);
            pointing_.activate(index_);
            return true;
        default:
            return false;
    }
}

void CurrentRow::step(int direction) {
    if (!isOnScreen(index_)) {
        choose(onScreen(direction), true);
        return;
    }
    TimelineLayout& timeline = view_.timeline();
    const qint64 top = timeline.rowTop(index_);
    const qint64 beyond =
        direction < 0 ? -top : top + timeline.row(index_).layout.height - timeline.viewportHeight();
    const qsizetype next = neighbour(index_, direction);
    if (beyond > 0 && isRingShown_) {
        const qint64 line = view_.context().px(linePoints);
        view_.scrollByPixels(direction * std::min(line, beyond));
        choose(index_, true);
    } else {
        goTo(next < 0 ? index_ : next, direction);
    }
}

void CurrentRow::page(int direction) {
    TimelineLayout& timeline = view_.timeline();
    const qint64 before = timeline.offset();
    view_.scrollByPixels(direction *
                         std::max(timeline.viewportHeight() - view_.context().px(pageOverlap), 1));
    const bool isAtEnd = timeline.offset() == before;
    const auto& visible = timeline.visibleRows();
    if (visible.empty()) return;
    choose(isAtEnd && direction > 0 ? visible.back().index : visible.front().index, true);
}

void CurrentRow::goTo(qsizetype row, int direction) {
    if (row < 0) return;
    TimelineLayout& timeline = view_.timeline();
    // Of a row that is higher than the window the end is shown that is come to.
    const int height = timeline.row(row).layout.height;
    const int shown = std::min(height, timeline.viewportHeight());
    view_.reveal(row, QRect(0, direction < 0 ? height - shown : 0, timeline.rowWidth(), shown));
    choose(row, true);
}

void CurrentRow::choose(qsizetype row, bool showRing) {
    isRingShown_ = showRing;
    view_.viewport()->update();
    if (row == index_) return;
    index_ = row;
    Q_EMIT changed(index_);
}

bool CurrentRow::isOnScreen(qsizetype row) const {
    const auto& visible = view_.timeline().visibleRows();
    return std::any_of(visible.begin(), visible.end(),
                       [row](const auto& shown) { return shown.index == row; });
}

qsizetype CurrentRow::onScreen(int direction) const {
    const auto& visible = view_.timeline().visibleRows();
    if (isOnScreen(index_) || visible.empty()) return index_;
    return direction > 0 ? visible.front().index : visible.back().index;
}

qsizetype CurrentRow::neighbour(qsizetype row, int direction) const {
    const auto& events = view_.chatlog().events();
    for (row += direction; row >= 0 && row < std::ssize(events); row += direction) {
        const auto& event = events[static_cast<size_t>(row)];
        const bool isEmpty =
            !event.sender && std::holds_alternative<TesselChatLog::User>(event.value);
        if (!isEmpty) return row;
    }
    return -1;
}

}  // namespace vell
