#pragma once
// SPDX-License-Identifier: MIT
//
// ImageBubbleView: a picture in a bubble, never larger than it is.

#include "timeline/bubble_layout.h"
#include "transcript/chat_log.h"

namespace vell {

struct ImageBubbleView {
    TesselChatLog::Image image;
    BubbleOwner owner;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
};

}  // namespace vell
