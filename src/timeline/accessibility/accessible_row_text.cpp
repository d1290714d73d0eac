// SPDX-License-Identifier: MIT
//
// A row's text for screen readers, by character, word and line.

#include <algorithm>

#include "timeline/accessibility/accessible_row.h"
#include "timeline/accessibility/accessible_timeline.h"
#include "timeline/rows/row_text.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

int clamped(qsizetype offset, qsizetype length) {
    return static_cast<int>(std::clamp<qsizetype>(offset, 0, length));
}

}  // namespace

QString AccessibleRow::content() const {
    return rowText(event());
}

// ---- the caret and the selection ---------------------------------------------------------------

int AccessibleRow::cursorPosition() const {
    TimelineView& view = timeline_.view();
    const auto caret = view.caret();
    return caret && caret->row == row_ ? static_cast<int>(caret->offset)
                                       : (view.currentRow() == row_ ? 0 : -1);
}

void AccessibleRow::setCursorPosition(int position) {
    const TextPosition place{row_, clamped(position, content().size())};
    timeline_.view().select({place, place});
}

void AccessibleRow::selection(int index, int* from, int* to) const {
    *from = *to = 0;
    const TextSpan& span = timeline_.view().selectedSpan();
    if (index != 0 || row_ < span.from.row || row_ > span.to.row) return;
    const qsizetype length = content().size();
    *from = row_ == span.from.row ? clamped(span.from.offset, length) : 0;
    *to = row_ == span.to.row ? clamped(span.to.offset, length) : static_cast<int>(length);
}

int AccessibleRow::selectionCount() const {
    int from = 0;
    int to = 0;
    selection(0, &from, &to);
    return from < to ? 1 : 0;
}

void AccessibleRow::addSelection(int from, int to) {
    setSelection(0, from, to);
}

void AccessibleRow::setSelection(int, int from, int to) {
    const qsizetype length = content().size();
    timeline_.view().select({{row_, clamped(from, length)}, {row_, clamped(to, length)}});
}

void AccessibleRow::removeSelection(int) {
    if (selectionCount() > 0) timeline_.view().clearSelection();
}

// ---- the text ----------------------------------------------------------------------------------

QString AccessibleRow::text(int from, int to) const {
    const QString all = content();
    const int start = clamped(from, all.size());
    QString part = all.mid(start, std::max(clamped(to, all.size()) - start, 0));
    // The bus that carries texts ends them at their first null character.
    return part.replace(QChar(), QChar(QChar::ReplacementCharacter));
}

int AccessibleRow::characterCount() const {
    return static_cast<int>(content().size());
}

/// The line of the row that holds an offset; nothing where the row shows no text.
std::optional<TextRange> AccessibleRow::lineAt(int offset) const {
    const RowLayout& layout = timeline_.view().timeline().row(row_).layout;
    if (!layout.text || std::holds_alternative<TesselChatLog::Image>(event().value)) return {};
    return layout.text->lineAround(offset);
}

QString AccessibleRow::textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* from,
                                    int* to) const {
    if (boundary != QAccessible::LineBoundary)
        return QAccessibleTextInterface::textAtOffset(offset, boundary, from, to);
    const TextRange line = lineAt(offset).value_or(TextRange{0, content().size()});
    *from = static_cast<int>(line.from);
    *to = static_cast<int>(line.to);
    return text(*from, *to);
}

QString AccessibleRow::textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary,
                                        int* from, int* to) const {
    if (boundary != QAccessible::LineBoundary)
        return QAccessibleTextInterface::textBeforeOffset(offset, boundary, from, to);
    textAtOffset(offset, boundary, from, to);
    if (*from > 0) return textAtOffset(*from - 1, boundary, from, to);
    *to = *from;
    return {};
}

QString AccessibleRow::textAfterOffset(int offset, QAccessible::TextBoundaryType boundary,
                                       int* from, int* to) const {
    if (boundary != QAccessible::LineBoundary)
        return QAccessibleTextInterface::textAfterOffset(offset, boundary, from, to);
    textAtOffset(offset, boundary, from, to);
    if (*to < characterCount()) {
        // Between the lines there may be a line break.
        const auto next = lineAt(*to);
        return textAtOffset(next && next->from == *to ? *to : *to + 1, boundary, from, to);
    }
    *from = *to;
    return {};
}

QString AccessibleRow::attributes(int, int* from, int* to) const {
    *from = 0;
    *to = characterCount();
    return {};
}

// ---- places on the screen ----------------------------------------------------------------------

QRect AccessibleRow::characterRect(int offset) const {
    return timeline_.characterRect(row_, offset);
}

int AccessibleRow::offsetAtPoint(const QPoint& point) const {
    return static_cast<int>(timeline_.offsetAt(row_, point));
}

void AccessibleRow::scrollToSubstring(int from, int to) {
    const qsizetype length = content().size();
    timeline_.view().scroller().revealText(
        {{row_, clamped(from, length)}, {row_, clamped(to, length)}});
}

}  // namespace vell
