#pragma once
// SPDX-License-Identifier: MIT
//
// TimelineRowView: one row of the timeline, shown by the view that its event asks for.

#include <variant>

#include "timeline/rows/image_bubble_view.h"
#include "timeline/rows/line_views.h"
#include "timeline/rows/plain_message_bubble_view.h"
#include "timeline/rows/sender_views.h"
#include "timeline/rows/separator_views.h"
#include "transcript/chat_log.h"

namespace vell {

class TimelineRowView {
  public:
    /// The views a row can have; std::monostate takes no room.
    using Content = std::variant<std::monostate, PlainMessageBubbleView, SystemMessageView,
                                 ImageBubbleView, FileView, SessionHeadingView, DaySeparatorView,
                                 TimeSeparatorView, SenderInfoView>;

    TimelineRowView(const TesselChatLog::Event& event, bool isOwn);

    /// Whether the event's sender is the owner of the transcript.
    static bool isOwn(const TesselChatLog::Event& event, const TesselChatLog& chatlog) {
        return chatlog.isOwn(event.sender);
    }

    [[nodiscard]] const Content& content() const { return content_; }
    /// The layout in a row of this many device pixels.
    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    /// Paints what measure() laid out; the painter counts device pixels from the row's top left.
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;

  private:
    Content content_;
};

}  // namespace vell
