#pragma once
// SPDX-License-Identifier: MIT
//
// ImageBubbleView: a picture in a bubble, never larger than it is. While it is being decoded its
// place is kept; where it can't be drawn, the bubble says what it is and why.

#include "timeline/rows/bubble_layout.h"
#include "timeline/rows/plain_message_bubble_view.h"
#include "transcript/chat_log.h"

namespace vell {

struct ImageBubbleView {
    TesselChatLog::Image image;
    BubbleOwner owner;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;

    /// The file name it came with, without folders; empty when there is none.
    [[nodiscard]] QString name() const;

  private:
    [[nodiscard]] PlainMessageBubbleView explanation(const QString& problem) const;
};

}  // namespace vell
