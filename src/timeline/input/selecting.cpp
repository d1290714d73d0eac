// SPDX-License-Identifier: MIT
#include "timeline/input/selecting.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

#include "timeline/input/row_place.h"
#include "timeline/rows/row_text.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr int scrollMilliseconds = 16;
// The further out the mouse, the faster: so much of the distance a step.
constexpr int scrollFraction = 4;

}  // namespace

Selecting::Selecting(TimelineView& view) : view_(view), selection_(view.sharedChatlog()) {
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
}

void Selecting::update() {
    isEmpty_ = selection_.isEmpty();
    view_.viewport()->update();
    Q_EMIT changed();
}

void Selecting::selectAll() {
    selection_.selectAll();
    update();
}

void Selecting::clear() {
    if (!selection_.focus()) return;
    selection_.clear();
    update();
}

// ---- highlights --------------------------------------------------------------------------------

void Selecting::setFindMatches(std::vector<TextRange> matches, qsizetype current) {
    matches_ = std::move(matches);
    currentMatch_ = current;
    view_.viewport()->update();
}

std::span<const TextHighlight> Selecting::highlights(qsizetype row, qsizetype from, qsizetype to) {
    highlights_.clear();
    auto match = std::lower_bound(matches_.begin(), matches_.end(), std::pair(row, from),
                                  [](const TextRange& m, auto place) {
                                      return std::pair(m.row, m.start + m.length) <= place;
                                  });
    for (; match != matches_.end() && match->row == row && match->start < to; ++match) {
        const bool isCurrent = match - matches_.begin() == currentMatch_;
        highlights_.push_back({match->start, match->start + match->length,
                               isCurrent ? HighlightKind::currentMatch : HighlightKind::match});
    }
    if (const auto selected = selection_.highlight(row)) highlights_.push_back(*selected);
    // The match that was asked for shows through a selection, which other matches don't.
    std::stable_sort(highlights_.begin(), highlights_.end(),
                     [](const auto& a, const auto& b) { return a.kind < b.kind; });
    return highlights_;
}

// ---- the mouse ---------------------------------------------------------------------------------

bool Selecting::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &view_) {
        return event->type() == QEvent::KeyPress && key(*static_cast<QKeyEvent*>(event));
    }
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return press(*static_cast<QMouseEvent*>(event));
        case QEvent::MouseMove:
            if (isDragging_) drag(static_cast<QMouseEvent*>(event)->position().toPoint());
            return isDragging_;
        case QEvent::MouseButtonRelease:
            return static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && release();
        default:
            return false;
    }
}

TextUnit Selecting::clickUnit(const QMouseEvent& event) {
    const QPoint place = event.position().toPoint();
    const bool isAgain =
        clicks_ > 0 && sinceClick_.elapsed() < QApplication::doubleClickInterval() &&
        (place - clickPlace_).manhattanLength() < QApplication::startDragDistance();
    const bool isDouble = event.type() == QEvent::MouseButtonDblClick;
    clicks_ = isDouble ? 2 : isAgain ? clicks_ % 3 + 1 : 1;
    clickPlace_ = place;
    sinceClick_.start();
    return clicks_ == 1 ? TextUnit::character : clicks_ == 2 ? TextUnit::word : TextUnit::paragraph;
}

bool Selecting::press(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return false;
    pointer_ = event.position().toPoint();
    const auto place = rowPlaceAt(view_.timeline(), view_.toDevice(pointer_));
    if (!place) return false;
    const TextUnit unit = clickUnit(event);
    isDragging_ = true;
    if ((event.modifiers() & Qt::ShiftModifier) && selection_.focus()) {
        selection_.extend(place->position());
    } else {
        selection_.start(place->position(unit == TextUnit::word), unit);
    }
    update();
    return true;
}

void Selecting::drag(QPoint point) {
    pointer_ = point;
    const bool isInside = point.y() >= 0 && point.y() < view_.viewport()->height();
    if (isInside) {
        scrollTimer_.stop();
    } else if (!scrollTimer_.isActive()) {
        scrollTimer_.start(scrollMilliseconds, this);
    }
    const QPoint inView(point.x(), std::clamp(point.y(), 0, view_.viewport()->height() - 1));
    const auto place = rowPlaceAt(view_.timeline(), view_.toDevice(inView));
    if (!place) return;
    const TextSpan before = selection_.span();
    selection_.extend(place->position());
    if (selection_.span() != before) update();
}

void Selecting::timerEvent(QTimerEvent* event) {
    if (event->timerId() != scrollTimer_.timerId()) return;
    const int beyond = pointer_.y() < 0
                           ? pointer_.y()
                           : std::max(pointer_.y() - view_.viewport()->height() + 1, 1);
    const int step = beyond / scrollFraction + (beyond < 0 ? -1 : 1);
    view_.scrollByPixels(view_.toDevice(QPoint(0, step)).y());
    drag(pointer_);
}

bool Selecting::release() {
    scrollTimer_.stop();
    if (!std::exchange(isDragging_, false)) return false;
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!isEmpty_ && clipboard->supportsSelection())
        clipboard->setMimeData(selection_.mimeData().release(), QClipboard::Selection);
    return true;
}

// ---- the keyboard ------------------------------------------------------------------------------

bool Selecting::key(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Escape) {
        if (isEmpty_) return false;
        clear();
        return true;
    }
    if (!(event.modifiers() & Qt::ShiftModifier) || view_.timeline().rowCount() == 0) return false;
    const qsizetype row = view_.currentRow() < 0 ? view_.topRow() : view_.currentRow();
    const TextPosition from = selection_.focus().value_or(TextPosition{row, 0});
    const std::optional<TextPosition> to = moved(from, event);
    if (!to) return false;
    if (!selection_.focus()) selection_.start(from, TextUnit::character);
    selection_.extend(*to);
    update();
    view_.revealText({to->row, to->offset, 0});
    return true;
}

std::optional<TextPosition> Selecting::moved(TextPosition from, const QKeyEvent& event) {
    const bool isFar = event.modifiers() & Qt::ControlModifier;
    const TextUnit unit = isFar ? TextUnit::word : TextUnit::character;
    const qsizetype last = view_.timeline().rowCount() - 1;
    switch (event.key()) {
        case Qt::Key_Left:
        case Qt::Key_Right: {
            const LaidOutText* text = view_.timeline().row(from.row).layout.text.get();
            const bool isReversed = text && text->isRightToLeft(from.offset);
            return movedAcross(from, (event.key() == Qt::Key_Right) != isReversed, unit);
        }
        case Qt::Key_Up:
            return movedByLine(from, -1);
        case Qt::Key_Down:
            return movedByLine(from, 1);
        case Qt::Key_Home:
            return isFar ? TextPosition{} : selection_.start(from.row);
        case Qt::Key_End:
            return isFar ? selection_.end(last) : selection_.end(from.row);
        default:
            return std::nullopt;
    }
}

TextPosition Selecting::movedAcross(TextPosition from, bool forward, TextUnit unit) {
    const TextPosition edge = forward ? selection_.end(from.row) : selection_.start(from.row);
    if (from.offset == edge.offset) {
        const qsizetype row = selection_.selectableRow(from.row, forward ? 1 : -1);
        if (row < 0) return from;
        return forward ? selection_.start(row) : selection_.end(row);
    }
    const auto& event = view_.chatlog().events()[static_cast<size_t>(from.row)];
    if (std::holds_alternative<TesselChatLog::Image>(event.value)) return edge;
    const QString text = rowText(event);
    return {from.row,
            forward ? nextPlace(text, from.offset, unit) : previousPlace(text, from.offset, unit)};
}

TextPosition Selecting::movedByLine(TextPosition from, int step) {
    TimelineLayout& timeline = view_.timeline();
    const QRect caret = timeline.exactCaret(from.row, from.offset);
    const TimelineLayout::Row& row = timeline.row(from.row);
    const LaidOutText* text = row.layout.text.get();
    if (text) {
        const QPoint corner = row.layout.content.topLeft();
        const int y =
            step < 0 ? caret.top() - text->spacing() - 1 : caret.bottom() + text->spacing() + 1;
        if (y >= corner.y() && y < corner.y() + text->height())
            return {from.row, text->offsetAt(QPoint(caret.left(), y) - corner)};
    }
    const qsizetype next = selection_.selectableRow(from.row, step);
    if (next < 0) return step < 0 ? selection_.start(from.row) : selection_.end(from.row);
    const TextPosition entered = step < 0 ? selection_.end(next) : selection_.start(next);
    const QRect entry = timeline.exactCaret(next, entered.offset);
    const TimelineLayout::Row& other = timeline.row(next);
    return RowPlace{next, QPoint(caret.left(), entry.center().y()), &other}.position();
}

}  // namespace vell
