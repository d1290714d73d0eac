#pragma once
// SPDX-License-Identifier: MIT
//
// What text and picture bubbles have in common: the sender's picture, the bubble and the flexible
// spacer beside each other.
//
//      others  [icon] 8 [bubble        ] 8 [spacer, at least 8]
//      own     [spacer, at least 8] 8 [        bubble] 8 [icon]
//
// Own bubbles are on the right in every layout direction, as their tails are. Bubble and icon share
// their bottom edge, where the tail is.

#include <optional>

#include "timeline/rows/row_context.h"
#include "timeline/rows/row_layout.h"
#include "toolkit/style.h"
#include "transcript/user_id.h"

namespace vell {

/// Whose bubble it is.
struct BubbleOwner {
    bool isOwn = false;
    std::optional<TesselUserID> sender;
};

/// The most that a bubble may be wide in a row, in device pixels.
[[nodiscard]] int widestBubble(const BubbleOwner& owner, const RowContext& context, int rowWidth);

/// Places a bubble around a content of some size. Paddings are device pixels; where they leave the
/// bubble smaller than its shape it grows, with the content in its middle.
[[nodiscard]] RowLayout placeBubble(const BubbleOwner& owner, QSize content,
                                    const QMargins& padding, const RowContext& context,
                                    int rowWidth);

/// Paints the bubble's background and the icon.
void paintBubble(QPainter& painter, const BubbleOwner& owner, const RowLayout& layout,
                 const RowContext& context, const RowPaint& what);

/// The owner's bubble colour.
[[nodiscard]] Style::Aqua bubbleStyle(const BubbleOwner& owner, const RowContext& context);

}  // namespace vell
