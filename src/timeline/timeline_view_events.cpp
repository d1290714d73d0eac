// SPDX-License-Identifier: MIT
//
// What the view makes of events: which of its parts sees each, and in which order.
#include <QContextMenuEvent>
#include <QEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include "timeline/input/keyboard_navigation.h"
#include "timeline/input/row_interaction.h"
#include "timeline/input/row_place.h"
#include "timeline/input/selection_controller.h"
#include "timeline/pictures/gif_player.h"
#include "timeline/timeline_view.h"

namespace vell {

// ---- input -------------------------------------------------------------------------------------

std::optional<RowPlace> TimelineView::placeAt(QPoint point) {
    return rowPlaceAt(layout_, context_.toDevice(point));
}

// The order in which the three see an event; what one has consumed is hidden from those after it.
bool TimelineView::dispatchMouse(const QMouseEvent& event) {
    const auto place = placeAt(event.position().toPoint());
    switch (event.type()) {
        case QEvent::MouseButtonPress:
            keyboard_->press(place);
            return rows_->press(event, place) || selection_->press(event, place);
        case QEvent::MouseButtonDblClick:
            return selection_->press(event, place);
        case QEvent::MouseMove:
            return rows_->move(event, place) || selection_->move(event, place);
        default:
            rows_->release(event, place);
            return selection_->release(event);
    }
}

bool TimelineView::dispatch(QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            return dispatchMouse(static_cast<const QMouseEvent&>(event));
        case QEvent::Leave:
            rows_->hover({});
            return false;
        case QEvent::Paint:
            // Scrolling moves the rows below the mouse.
            if (viewport()->underMouse() && !rows_->isPressed())
                rows_->hover(placeAt(viewport()->mapFromGlobal(QCursor::pos())));
            return false;
        case QEvent::ToolTip: {
            const auto& help = static_cast<const QHelpEvent&>(event);
            if (const auto place = placeAt(help.pos())) rows_->showToolTip(help, *place);
            return true;
        }
        case QEvent::ContextMenu: {
            const auto& menu = static_cast<const QContextMenuEvent&>(event);
            if (menu.reason() == QContextMenuEvent::Keyboard) {
                keyboard_->showMenu();
            } else if (const auto place = placeAt(menu.pos())) {
                rows_->showMenu(place->row, menu.pos());
            }
            return true;
        }
        case QEvent::KeyPress: {
            const auto& key = static_cast<const QKeyEvent&>(event);
            return keyboard_->key(key) || selection_->key(key, keyboard_->row());
        }
        default:
            return false;
    }
}

bool TimelineView::viewportEvent(QEvent* event) {
    return dispatch(*event) || QAbstractScrollArea::viewportEvent(event);
}

void TimelineView::keyPressEvent(QKeyEvent* event) {
    if (!dispatch(*event)) QAbstractScrollArea::keyPressEvent(event);
}

// That of the keyboard, which comes to the view itself.
void TimelineView::contextMenuEvent(QContextMenuEvent* event) {
    dispatch(*event);
}

void TimelineView::focusInEvent(QFocusEvent* event) {
    keyboard_->focusIn(event->reason());
    QAbstractScrollArea::focusInEvent(event);
}

void TimelineView::focusOutEvent(QFocusEvent* event) {
    viewport()->update();
    QAbstractScrollArea::focusOutEvent(event);
}

// ---- events ------------------------------------------------------------------------------------

void TimelineView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    if (!isBuilt_) rebuild();
}

void TimelineView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    gifPlayer_->stop();
}

void TimelineView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    switch (event->type()) {
        case QEvent::FontChange:
        case QEvent::PaletteChange:
        case QEvent::StyleChange:
        case QEvent::LayoutDirectionChange:
            if (isBuilt_) rebuild();
            break;
        default:
            break;
    }
}

void TimelineView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    if (!isBuilt_) return;
    if (event->size().width() != event->oldSize().width()) {
        rebuild();
    } else {
        layout_.setViewportHeight(viewportHeight());
        scroller_.update();
    }
}

void TimelineView::scrollContentsBy(int, int) {
    scroller_.followScrollBar();
}

void TimelineView::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        event->ignore();
        return;
    }
    event->accept();
    scroller_.scrollByWheel(*event);
}

}  // namespace vell
