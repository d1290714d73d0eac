// SPDX-License-Identifier: MIT
#include "timeline/input/keyboard_navigation.h"

#include <QAbstractScrollArea>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "timeline/input/row_interaction.h"
#include "timeline/input/row_place.h"
#include "timeline/layout/timeline_layout.h"
#include "timeline/layout/timeline_scroller.h"

namespace vell {
namespace {

constexpr qreal ringDistance = 3;  // points
constexpr qreal ringWidth = 2;
constexpr qreal ringCorner = 8;
constexpr qreal linePoints = 60;  // what an arrow key scrolls in a high row
constexpr qreal beyondEdges = 40;

QRect shownPart(const RowLayout& layout) {
    return layout.frame.isEmpty() ? layout.content : layout.frame;
}

}  // namespace

KeyboardNavigation::KeyboardNavigation(QAbstractScrollArea& area, TimelineLayout& layout,
                                       const RowContext& context, TimelineScroller& scroller,
                                       RowInteraction& rows)
    : area_(area), layout_(layout), context_(context), scroller_(scroller), rows_(rows) {}

QRect KeyboardNavigation::ring() const {
    if (!isRingShown_ || !area_.hasFocus() || !layout_.isVisible(row_)) return {};
    const int distance = context_.px(ringDistance);
    const QPoint corner(layout_.rowLeft(), static_cast<int>(layout_.rowTop(row_)));
    const QRect shown = shownPart(layout_.row(row_).layout).translated(corner);
    QRect ring = shown.adjusted(-distance, -distance, distance, distance);
    // Around a whole row the ring is whole, even where the row touches the edge.
    const int line = context_.px(ringWidth);
    if (shown.top() >= 0) ring.setTop(std::max(ring.top(), line / 2));
    if (shown.bottom() < layout_.viewportHeight())
        ring.setBottom(std::min(ring.bottom(), layout_.viewportHeight() - 1 - line));
    return ring;
}

QRect KeyboardNavigation::ringArea() const {
    const QRect ring = this->ring();
    const int line = context_.px(ringWidth);
    return ring.isEmpty() ? QRect() : ring.adjusted(-line, -line, line, line);
}

void KeyboardNavigation::paint(QPainter& painter) const {
    const QRect ring = this->ring();
    if (ring.isEmpty()) return;
    // Painters fail at the edges of rows that are higher than some ten thousand pixels.
    const int around = context_.px(beyondEdges);
    const QRect near = ring.intersected(
        QRect(ring.left(), -around, ring.width(), layout_.viewportHeight() + 2 * around));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(context_.colors.highlight, ringWidth * context_.ratio));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(near, ringCorner * context_.ratio, ringCorner * context_.ratio);
    painter.restore();
}

void KeyboardNavigation::press(const std::optional<RowPlace>& place) {
    if (place) choose(place->row, false);
}

void KeyboardNavigation::focusIn(Qt::FocusReason reason) {
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) choose(onScreen(1), true);
    area_.viewport()->update();
}

void KeyboardNavigation::showMenu() {
    rows_.showMenu(onScreen(1));
}

bool KeyboardNavigation::key(const QKeyEvent& event) {
    if (layout_.rowCount() == 0) return false;
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
            jump(neighbour(-1, 1), 1);
            return true;
        case Qt::Key_End:
            goToEnd();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose(onScreen(1), true);
            rows_.activate(row_);
            return true;
        default:
            return false;
    }
}

void KeyboardNavigation::step(int direction) {
    if (!layout_.isVisible(row_)) {
        choose(onScreen(direction), true);
        return;
    }
    const qint64 top = layout_.rowTop(row_);
    const qint64 beyond =
        direction < 0 ? -top : top + layout_.row(row_).layout.height - layout_.viewportHeight();
    const qsizetype next = neighbour(row_, direction);
    if (beyond > 0 && isRingShown_) {
        const qint64 line = context_.px(linePoints);
        scroller_.scrollByPixels(direction * std::min(line, beyond));
        choose(row_, true);
    } else {
        goTo(next < 0 ? row_ : next, direction);
    }
}

void KeyboardNavigation::jump(qsizetype row, int direction) {
    const TimelinePlace left = scroller_.place();
    goTo(row, direction);
    Q_EMIT jumped(left);
}

void KeyboardNavigation::page(int direction) {
    const qint64 before = layout_.offset();
    scroller_.scrollByPixels(qint64{direction} * scroller_.pagePixels());
    if (layout_.visibleRows().empty()) return;
    const bool isAtEnd = layout_.offset() == before;
    choose(wholeRow(isAtEnd ? direction : -1), true);
}

qsizetype KeyboardNavigation::wholeRow(int from) const {
    const auto& visible = layout_.visibleRows();
    const auto isWhole = [this](const auto& row) {
        return !isCaption(row.index) && row.top >= 0 &&
               row.top + row.row->layout.height <= layout_.viewportHeight();
    };
    if (from > 0) {
        const auto last = std::find_if(visible.rbegin(), visible.rend(), isWhole);
        return last == visible.rend() ? visible.back().index : last->index;
    }
    const auto first = std::find_if(visible.begin(), visible.end(), isWhole);
    return first == visible.end() ? visible.front().index : first->index;
}

void KeyboardNavigation::goToEnd() {
    const qsizetype last = neighbour(layout_.rowCount(), -1);
    if (last < 0) return;
    const TimelinePlace left = scroller_.place();
    scroller_.scrollToEnd();
    choose(last, true);
    Q_EMIT jumped(left);
}

void KeyboardNavigation::goTo(qsizetype row, int direction) {
    if (row < 0) return;
    // Of a row that is higher than the window the end is shown that is come to.
    const int height = layout_.row(row).layout.height;
    const int shown = std::min(height, layout_.viewportHeight());
    scroller_.reveal(row, QRect(0, direction < 0 ? height - shown : 0, layout_.rowWidth(), shown));
    choose(row, true);
}

void KeyboardNavigation::choose(qsizetype row, bool showRing) {
    isRingShown_ = showRing;
    area_.viewport()->update();
    if (row == row_) return;
    row_ = row;
    Q_EMIT changed(row_);
}

qsizetype KeyboardNavigation::onScreen(int direction) const {
    const auto& visible = layout_.visibleRows();
    if (layout_.isVisible(row_) || visible.empty()) return row_;
    return direction > 0 ? visible.front().index : visible.back().index;
}

// A caption says who has spoken; it is part of the messages above it.
bool KeyboardNavigation::isCaption(qsizetype row) const {
    const auto& event = layout_.chatlog().event(row);
    return std::holds_alternative<TesselChatLog::User>(event.value);
}

qsizetype KeyboardNavigation::neighbour(qsizetype row, int direction) const {
    for (row += direction; row >= 0 && row < layout_.rowCount(); row += direction) {
        if (!isCaption(row)) return row;
    }
    return -1;
}

}  // namespace vell
