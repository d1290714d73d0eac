// SPDX-License-Identifier: MIT
#include "timeline/input/row_place.h"

#include <variant>

namespace vell {

bool RowPlace::isOnText() const {
    const RowLayout& layout = content->layout;
    return layout.text && layout.text->isOnText(point - layout.content.topLeft());
}

bool RowPlace::isOnPicture() const {
    const RowLayout& layout = content->layout;
    return std::holds_alternative<ImageBubbleView>(content->view.content()) &&
           (layout.text ? layout.frame : layout.content).contains(point);
}

TextPosition RowPlace::position(bool character) const {
    const RowLayout& layout = content->layout;
    const TimelineRowView::Content& view = content->view.content();
    if (std::holds_alternative<ImageBubbleView>(view))
        return {row, point.y() < layout.content.center().y() ? 0 : 1};
    if (!layout.text || std::holds_alternative<SenderInfoView>(view)) return {row, 0};
    const QPoint inText = point - layout.content.topLeft();
    return {row, character ? layout.text->characterAt(inText) : layout.text->offsetAt(inText)};
}

std::optional<RowPlace> rowPlaceAt(TimelineLayout& timeline, QPoint point) {
    const qsizetype index = timeline.rowAt(point.y());
    if (index < 0) return std::nullopt;
    const TimelineLayout::Row& content = timeline.row(index);
    for (const TimelineLayout::VisibleRow& visible : timeline.visibleRows()) {
        if (visible.index != index) continue;
        return RowPlace{index, point - QPoint(timeline.rowLeft(), visible.top), &content};
    }
    return std::nullopt;
}

}  // namespace vell
