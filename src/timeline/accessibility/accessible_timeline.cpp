// SPDX-License-Identifier: MIT
#include "timeline/accessibility/accessible_timeline.h"

#include <QCoreApplication>
#include <QScrollBar>
#include <algorithm>
#include <limits>

#include "timeline/accessibility/accessible_row.h"
#include "timeline/text/text_units.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

QAccessibleInterface* make(const QString& className, QObject* object) {
    if (className != QLatin1String(TimelineView::staticMetaObject.className())) return nullptr;
    return new AccessibleTimeline(*static_cast<TimelineView*>(object));
}

/// The view's interface; null while no assistive technology is active.
AccessibleTimeline* activeInterface(TimelineView& view) {
    if (!QAccessible::isActive()) return nullptr;
    return static_cast<AccessibleTimeline*>(QAccessible::queryAccessibleInterface(&view));
}

}  // namespace

void AccessibleTimeline::attach(TimelineView& view) {
    static const bool isInstalled = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    static_cast<void>(isInstalled);
    QObject::connect(&view, &TimelineView::currentRowChanged, &view, [&view](qsizetype row) {
        if (const auto* timeline = activeInterface(view)) timeline->focusChanged(row);
    });
    QObject::connect(&view, &TimelineView::selectionChanged, &view, [&view] {
        if (auto* timeline = activeInterface(view)) timeline->caretChanged();
    });
    QObject::connect(&view, &TimelineView::pictureFailed, &view, [&view](qsizetype row) {
        if (const auto* timeline = activeInterface(view)) timeline->nameChanged(row);
    });
    QObject::connect(&view, &TimelineView::namesChanged, &view, [&view] {
        if (const auto* timeline = activeInterface(view)) timeline->namesChanged();
    });
}

AccessibleTimeline::AccessibleTimeline(TimelineView& view)
    : QAccessibleWidget(&view, QAccessible::List) {}

AccessibleTimeline::~AccessibleTimeline() {
    for (const auto& [row, id] : items_)
        QAccessible::deleteAccessibleInterface(id);
}

// Asked during destruction, too, when nothing but a QWidget is left of the view.
bool AccessibleTimeline::isValid() const {
    return QAccessibleWidget::isValid() && qobject_cast<TimelineView*>(object());
}

TimelineView& AccessibleTimeline::view() const {
    return *static_cast<TimelineView*>(object());
}

// ---- children ----------------------------------------------------------------------------------

// Captions say nothing that the names of their messages don't.
const std::vector<qsizetype>& AccessibleTimeline::leftOut() const {
    if (!leftOut_) {
        leftOut_.emplace();
        const auto& events = view().chatlog().events();
        for (size_t row = 0; row < events.size(); ++row) {
            if (std::holds_alternative<TesselChatLog::User>(events[row].value))
                leftOut_->push_back(static_cast<qsizetype>(row));
        }
    }
    return *leftOut_;
}

bool AccessibleTimeline::isLeftOut(qsizetype row) const {
    return std::binary_search(leftOut().begin(), leftOut().end(), row);
}

int AccessibleTimeline::childCount() const {
    const size_t count = view().chatlog().events().size() - leftOut().size();
    return static_cast<int>(std::min<size_t>(count, std::numeric_limits<int>::max()));
}

qsizetype AccessibleTimeline::rowOfChild(int index) const {
    const auto& out = leftOut();
    // Before the left out row number i there are row - i children.
    const auto isBefore = [&](const qsizetype& row) { return row - (&row - out.data()) <= index; };
    const auto after = std::partition_point(out.begin(), out.end(), isBefore);
    return index + (after - out.begin());
}

QAccessibleInterface* AccessibleTimeline::child(int index) const {
    return index >= 0 && index < childCount() ? item(rowOfChild(index)) : nullptr;
}

int AccessibleTimeline::indexOfChild(const QAccessibleInterface* child) const {
    const auto* item = dynamic_cast<const AccessibleRow*>(child);
    if (!item) return -1;
    const auto& out = leftOut();
    const auto before = std::lower_bound(out.begin(), out.end(), item->row()) - out.begin();
    return static_cast<int>(item->row() - before);
}

QAccessibleInterface* AccessibleTimeline::item(qsizetype row) const {
    if (const auto known = items_.find(row); known != items_.end())
        return QAccessible::accessibleInterface(known->second);
    if (made_.size() >= mostItems) {
        const auto oldest = items_.find(made_.front());
        QAccessible::deleteAccessibleInterface(oldest->second);
        items_.erase(oldest);
        made_.pop_front();
    }
    auto* made = new AccessibleRow(*this, row);
    items_.emplace(row, QAccessible::registerAccessibleInterface(made));
    made_.push_back(row);
    return made;
}

QAccessibleInterface* AccessibleTimeline::childAt(int x, int y) const {
    if (!rect().contains(x, y)) return nullptr;
    const QPoint point = view().viewport()->mapFromGlobal(QPoint(x, y));
    const qsizetype row = view().timeline().rowAt(view().context().toDevice(point).y());
    return row >= 0 && !isLeftOut(row) && rowRect(row).contains(x, y) ? item(row) : nullptr;
}

QAccessibleInterface* AccessibleTimeline::focusChild() const {
    if (!view().hasFocus()) return nullptr;
    const qsizetype row = view().currentRow();
    if (row < 0 || isLeftOut(row)) return QAccessible::queryAccessibleInterface(&view());
    return item(row);
}

// ---- names and places --------------------------------------------------------------------------

QString AccessibleTimeline::text(QAccessible::Text kind) const {
    QString text = QAccessibleWidget::text(kind);
    if (kind != QAccessible::Name || !text.isEmpty()) return text;
    return QCoreApplication::translate("Timeline", "Conversation");
}

QRect AccessibleTimeline::rowRect(qsizetype row) const {
    const TimelineLayout& layout = view().timeline();
    if (layout.rowCount() == 0) return {};  // never shown
    const qreal ratio = view().viewport()->devicePixelRatioF();
    const auto place = [&](qint64 pixels) {
        constexpr qint64 far = 1 << 29;
        return static_cast<int>(std::clamp<qint64>(
            static_cast<qint64>(static_cast<double>(pixels) / ratio), -far, far));
    };
    const int top = place(layout.rowTop(row));
    const int bottom = place(layout.rowTop(row + 1)) - static_cast<int>(standardSpacing);
    const QPoint corner(place(layout.rowLeft()), top);
    return {view().viewport()->mapToGlobal(corner), QSize(place(layout.rowWidth()), bottom - top)};
}

QRect AccessibleTimeline::toScreen(const QRect& inRow, qsizetype row) const {
    const qreal ratio = view().viewport()->devicePixelRatioF();
    const QPointF corner(view().timeline().rowLeft() + inRow.left(),
                         static_cast<qreal>(view().timeline().rowTop(row)) + inRow.top());
    return {view().viewport()->mapToGlobal((corner / ratio).toPoint()),
            (QSizeF(inRow.size()) / ratio).toSize()};
}

QRect AccessibleTimeline::characterRect(qsizetype row, qsizetype offset) const {
    TimelineLayout& timeline = view().timeline();
    if (timeline.rowCount() == 0) return {};
    const QRect caret = timeline.exactCaret(row, offset);
    const RowLayout& layout = timeline.row(row).layout;
    if (!layout.text) return toScreen(caret, row);
    const QPoint corner = layout.content.topLeft();
    const int top = caret.top() - corner.y();
    const auto end = nextPlace(layout.text->text(), offset, TextUnit::character);
    const auto parts = layout.text->region({offset, end}, top, top + caret.height());
    return toScreen(parts.empty() ? caret : parts.front().translated(corner), row);
}

qsizetype AccessibleTimeline::offsetAt(qsizetype row, QPoint point) const {
    TimelineLayout& timeline = view().timeline();
    if (timeline.rowCount() == 0) return -1;
    const RowLayout& layout = timeline.row(row).layout;
    if (!layout.text) return -1;
    const QPoint device = view().context().toDevice(view().viewport()->mapFromGlobal(point));
    const QPoint corner(timeline.rowLeft(), static_cast<int>(timeline.rowTop(row)));
    return layout.text->characterAt(device - corner - layout.content.topLeft());
}

void AccessibleTimeline::nameChanged(qsizetype row) const {
    const auto known = items_.find(row);
    if (known == items_.end()) return;
    QAccessibleEvent event(QAccessible::accessibleInterface(known->second),
                           QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void AccessibleTimeline::namesChanged() const {
    for (const qsizetype row : made_) {
        if (view().chatlog().event(row).sender) nameChanged(row);
    }
}

void AccessibleTimeline::focusChanged(qsizetype row) const {
    if (row < 0 || isLeftOut(row) || !view().hasFocus()) return;
    QAccessibleEvent event(item(row), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void AccessibleTimeline::caretChanged() const {
    const auto caret = view().caret();
    if (!caret || isLeftOut(caret->row)) return;
    QAccessibleTextCursorEvent event(item(caret->row), static_cast<int>(caret->offset));
    QAccessible::updateAccessibility(&event);
}

}  // namespace vell
