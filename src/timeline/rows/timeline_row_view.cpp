// SPDX-License-Identifier: MIT
#include "timeline/rows/timeline_row_view.h"

#include <QPainter>
#include <type_traits>

#include "toolkit/shown_text.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;
using Content = TimelineRowView::Content;

/// Chooses the view for each kind of value.
struct Chooser {
    const Event& event;
    bool isOwn;

    [[nodiscard]] BubbleOwner owner() const { return {isOwn, event.sender}; }

    Content operator()(const TesselChatLog::PlainText& value) const {
        if (!event.sender) return SystemMessageView{value.text};
        PlainMessageBubbleView bubble;
        bubble.content = value.text;
        bubble.owner = owner();
        return bubble;
    }
    Content operator()(const TesselChatLog::Link& value) const {
        PlainMessageBubbleView bubble;
        bubble.content = value.title;
        bubble.isLink = true;
        bubble.owner = owner();
        return bubble;
    }
    Content operator()(const TesselChatLog::Image& value) const {
        return ImageBubbleView{value, owner()};
    }
    Content operator()(const TesselChatLog::File& value) const { return FileView{value.wrapper}; }
    Content operator()(const TesselChatLog::Session& value) const {
        return SessionHeadingView{shownText(value.name()).simplified()};
    }
    Content operator()(const TesselChatLog::NewDay&) const {
        return DaySeparatorView{event.timestamp};
    }
    Content operator()(const TesselChatLog::NewMinute&) const {
        return TimeSeparatorView{event.timestamp};
    }
    Content operator()(const TesselChatLog::User&) const {
        if (!event.sender) return std::monostate();
        return SenderInfoView{*event.sender, isOwn};
    }
};

template <class T>
constexpr bool isEmpty = std::is_same_v<std::decay_t<T>, std::monostate>;

}  // namespace

TimelineRowView::TimelineRowView(const Event& event, bool isOwn)
    : content_(std::visit(Chooser{event, isOwn}, event.value)) {}

RowLayout TimelineRowView::measure(const RowContext& context, int width) const {
    return std::visit(
        [&](const auto& view) -> RowLayout {
            if constexpr (isEmpty<decltype(view)>) {
                return {};
            } else {
                return view.measure(context, width);
            }
        },
        content_);
}

void TimelineRowView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                            const RowPaint& what) const {
    std::visit(
        [&](const auto& view) {
            if constexpr (!isEmpty<decltype(view)>) view.paint(painter, layout, context, what);
        },
        content_);
}

}  // namespace vell
