// SPDX-License-Identifier: MIT
#include "timeline/input/selection_controller.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

#include "timeline/input/row_place.h"
#include "timeline/layout/timeline_layout.h"
#include "timeline/layout/timeline_scroller.h"
#include "timeline/rows/row_text.h"

namespace vell {
namespace {

constexpr int scrollMilliseconds = 16;
// The further out the mouse, the faster: this fraction of the distance a step.
constexpr int scrollFraction = 4;

}  // namespace

SelectionController::SelectionController(QAbstractScrollArea& area, TimelineLayout& layout,
                                         const RowContext& context, TimelineScroller& scroller)
    : area_(area),
      layout_(layout),
      context_(context),
      scroller_(scroller),
      selection_(layout.sharedChatlog()) {}

void SelectionController::update() {
    isEmpty_ = selection_.isEmpty();
    area_.viewport()->update();
    Q_EMIT changed();
}

void SelectionController::setChatlog(std::shared_ptr<const TesselChatLog> chatlog) {
    clear();
    selection_ = Selection(std::move(chatlog));
}

void SelectionController::select(const TextSpan& span) {
    selection_.start(span.from, TextUnit::character);
    selection_.extend(span.to);
    update();
}

void SelectionController::selectAll() {
    selection_.selectAll();
    update();
}

std::unique_ptr<QMimeData> SelectionController::mimeData(SelectionTarget target) const {
    if (exporter_) return exporter_(selection_.span(), target);
    auto data = std::make_unique<QMimeData>();
    data->setText(text());
    return data;
}

void SelectionController::copy() const {
    if (isEmpty_) return;
    if (auto data = mimeData(SelectionTarget::clipboard))
        QGuiApplication::clipboard()->setMimeData(data.release());
}

void SelectionController::clear() {
    if (!selection_.focus()) return;
    selection_.clear();
    update();
}

// ---- highlights --------------------------------------------------------------------------------

void SelectionController::setFindMatches(std::shared_ptr<const FoundSpans> matches,
                                         qsizetype current) {
    matches_ = std::move(matches);
    currentMatch_ = current;
    area_.viewport()->update();
}

std::span<const TextHighlight> SelectionController::highlights(qsizetype row, TextRange part) {
    highlights_.clear();
    const qsizetype count = matches_ ? matches_->size() : 0;
    qsizetype index = count > 0 ? matches_->firstEndingAfter({row, part.from}) : 0;
    for (; index < count; ++index) {
        const TextSpan& match = (*matches_)[index];
        if (match.from >= TextPosition{row, part.to}) break;
        highlights_.push_back(
            {{match.from.offset, match.to.offset},
             index == currentMatch_ ? HighlightKind::currentMatch : HighlightKind::match});
    }
    if (const auto selected = selection_.highlight(row)) highlights_.push_back(*selected);
    // The current match is painted over a selection, the others below it.
    std::stable_sort(highlights_.begin(), highlights_.end(),
                     [](const auto& a, const auto& b) { return a.kind < b.kind; });
    return highlights_;
}

// ---- the mouse ---------------------------------------------------------------------------------

TextUnit SelectionController::clickUnit(const QMouseEvent& event) {
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

bool SelectionController::press(const QMouseEvent& event, const std::optional<RowPlace>& place) {
    if (event.button() != Qt::LeftButton || !place) return false;
    pointer_ = event.position().toPoint();
    const TextUnit unit = clickUnit(event);
    const bool isPlain = unit == TextUnit::character && event.modifiers() == Qt::NoModifier;
    if (isPlain && isOnSelection(*place)) {
        grabbed_ = place->position();
        return true;
    }
    isDragging_ = true;
    if ((event.modifiers() & Qt::ShiftModifier) && selection_.focus()) {
        selection_.extend(place->position());
    } else {
        selection_.start(place->position(unit == TextUnit::word), unit);
    }
    update();
    return true;
}

bool SelectionController::isOnSelection(const RowPlace& place) const {
    const TextPosition position = place.position(true);
    return !isEmpty_ && place.isOnText() && position >= selection_.span().from &&
           position < selection_.span().to;
}

void SelectionController::dragSelection() {
    auto* drag = new QDrag(area_.viewport());
    drag->setMimeData(mimeData(SelectionTarget::mouse).release());
    drag->exec(Qt::CopyAction);  // the window may be gone when this returns
}

bool SelectionController::move(const QMouseEvent& event, const std::optional<RowPlace>& place) {
    if (grabbed_) {
        const QPoint moved = event.position().toPoint() - pointer_;
        if (moved.manhattanLength() < QApplication::startDragDistance()) return true;
        grabbed_.reset();
        dragSelection();
        return true;
    }
    if (!isDragging_) return false;
    pointer_ = event.position().toPoint();
    if (pointer_.y() >= 0 && pointer_.y() < area_.viewport()->height()) {
        scrollTimer_.stop();
        dragTo(place);
    } else {
        if (!scrollTimer_.isActive()) scrollTimer_.start(scrollMilliseconds, this);
        dragToPointer();
    }
    return true;
}

void SelectionController::dragTo(const std::optional<RowPlace>& place) {
    if (!place) return;
    const TextSpan before = selection_.span();
    selection_.extend(place->position());
    if (selection_.span() != before) update();
}

// Beyond the edges the rows at the edges count.
void SelectionController::dragToPointer() {
    const int last = area_.viewport()->height() - 1;
    const QPoint inView(pointer_.x(), std::clamp(pointer_.y(), 0, last));
    dragTo(rowPlaceAt(layout_, context_.toDevice(inView)));
}

void SelectionController::timerEvent(QTimerEvent* event) {
    if (event->timerId() != scrollTimer_.timerId()) return;
    const int beyond = pointer_.y() < 0
                           ? pointer_.y()
                           : std::max(pointer_.y() - area_.viewport()->height() + 1, 1);
    const int step = beyond / scrollFraction + (beyond < 0 ? -1 : 1);
    scroller_.scrollByPixels(context_.toDevice(QPoint(0, step)).y());
    dragToPointer();
}

bool SelectionController::release(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return false;
    scrollTimer_.stop();
    if (const auto grabbed = std::exchange(grabbed_, {})) {
        selection_.start(*grabbed, TextUnit::character);
        update();
        return true;
    }
    if (!std::exchange(isDragging_, false)) return false;
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!isEmpty_ && clipboard->supportsSelection())
        clipboard->setMimeData(mimeData(SelectionTarget::mouse).release(), QClipboard::Selection);
    return true;
}

// ---- the keyboard ------------------------------------------------------------------------------

bool SelectionController::key(const QKeyEvent& event, qsizetype currentRow) {
    if (event.key() == Qt::Key_Escape) {
        if (isEmpty_) return false;
        clear();
        return true;
    }
    if (!(event.modifiers() & Qt::ShiftModifier) || layout_.rowCount() == 0) return false;
    const qsizetype row = currentRow < 0 ? scroller_.topRow() : currentRow;
    const TextPosition from = selection_.focus().value_or(TextPosition{row, 0});
    const std::optional<TextPosition> to = moved(from, event);
    if (!to) return false;
    if (!selection_.focus()) selection_.start(from, TextUnit::character);
    selection_.extend(*to);
    update();
    scroller_.revealText({*to, *to});
    return true;
}

std::optional<TextPosition> SelectionController::moved(TextPosition from, const QKeyEvent& event) {
    const bool isFar = event.modifiers() & Qt::ControlModifier;
    const TextUnit unit = isFar ? TextUnit::word : TextUnit::character;
    const qsizetype last = layout_.rowCount() - 1;
    switch (event.key()) {
        case Qt::Key_Left:
        case Qt::Key_Right: {
            const LaidOutText* text = layout_.row(from.row).layout.text.get();
            const bool isReversed = text && text->isRightToLeft(from.offset);
            return movedAcross(from, (event.key() == Qt::Key_Right) != isReversed, unit);
        }
        case Qt::Key_Up:
            return movedByLine(from, -1);
        case Qt::Key_Down:
            return movedByLine(from, 1);
        case Qt::Key_PageUp:
            return movedByPage(from, -1);
        case Qt::Key_PageDown:
            return movedByPage(from, 1);
        case Qt::Key_Home:
            return isFar ? TextPosition{} : selection_.rowStart(from.row);
        case Qt::Key_End:
            return isFar ? selection_.rowEnd(last) : selection_.rowEnd(from.row);
        default:
            return std::nullopt;
    }
}

TextPosition SelectionController::movedAcross(TextPosition from, bool forward, TextUnit unit) {
    const TextPosition edge = forward ? selection_.rowEnd(from.row) : selection_.rowStart(from.row);
    if (from.offset == edge.offset) {
        const qsizetype row = selection_.selectableRow(from.row, forward ? 1 : -1);
        if (row < 0) return from;
        return forward ? selection_.rowStart(row) : selection_.rowEnd(row);
    }
    const auto& event = layout_.chatlog().event(from.row);
    if (std::holds_alternative<TesselChatLog::Image>(event.value)) return edge;
    const QString text = rowText(event);
    return {from.row,
            forward ? nextPlace(text, from.offset, unit) : previousPlace(text, from.offset, unit)};
}

TextPosition SelectionController::movedByLine(TextPosition from, int step) {
    const QRect caret = layout_.exactCaret(from.row, from.offset);
    const TimelineLayout::Row& row = layout_.row(from.row);
    const LaidOutText* text = row.layout.text.get();
    if (text) {
        const QPoint corner = row.layout.content.topLeft();
        const int y =
            step < 0 ? caret.top() - text->spacing() - 1 : caret.bottom() + text->spacing() + 1;
        if (y >= corner.y() && y < corner.y() + text->height())
            return {from.row, text->offsetAt(QPoint(caret.left(), y) - corner)};
    }
    const qsizetype next = selection_.selectableRow(from.row, step);
    if (next < 0) return step < 0 ? selection_.rowStart(from.row) : selection_.rowEnd(from.row);
    const TextPosition entered = step < 0 ? selection_.rowEnd(next) : selection_.rowStart(next);
    const QRect entry = layout_.exactCaret(next, entered.offset);
    const TimelineLayout::Row& other = layout_.row(next);
    return RowPlace{next, QPoint(caret.left(), entry.center().y()), &other}.position();
}

// To the place that comes where the caret was, once the rows have moved by a page; where they
// can't, the caret goes the rest of the way.
TextPosition SelectionController::movedByPage(TextPosition from, int direction) {
    scroller_.revealText({from, from});
    const QRect caret = layout_.exactCaret(from.row, from.offset);
    const qint64 y = layout_.rowTop(from.row) + caret.center().y();
    const qint64 page = scroller_.pagePixels();
    const qint64 before = layout_.offset();
    scroller_.scrollByPixels(direction * page);
    const qint64 rest = std::max<qint64>(page - std::abs(layout_.offset() - before), 0);
    const auto place = rowPlaceAt(
        layout_, QPoint(layout_.rowLeft() + caret.left(), static_cast<int>(y + direction * rest)));
    return place ? place->position() : from;
}

}  // namespace vell
