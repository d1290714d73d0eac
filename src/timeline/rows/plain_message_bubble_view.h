#pragma once
// SPDX-License-Identifier: MIT
//
// PlainMessageBubbleView: a message's text, or a link's title, in a bubble.

#include "timeline/rows/bubble_layout.h"

namespace vell {

struct PlainMessageBubbleView {
    qreal lineSpacing = 8;  ///< points
    QString content;        ///< shown as it stands
    bool isLink = false;
    BubbleOwner owner;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
};

}  // namespace vell
