// SPDX-License-Identifier: MIT
#include "timeline/rows/bubble_layout.h"

#include <QPainter>
#include <algorithm>

#include "timeline/bubbles/background_cache.h"
#include "timeline/bubbles/bubble_colors.h"
#include "timeline/rows/sender_views.h"

namespace vell {

int widestBubble(const BubbleOwner& owner, const RowContext& context, int rowWidth) {
    const int spacing = context.px(standardSpacing);
    const int icon = owner.sender ? SenderIconView::size(context).width() + spacing : 0;
    return std::max(rowWidth - icon - 2 * spacing, context.px(minimumBubbleWidth));
}

RowLayout placeBubble(const BubbleOwner& owner, QSize content, const QMargins& padding,
                      const RowContext& context, int rowWidth) {
    const QSize iconSize = owner.sender ? SenderIconView::size(context) : QSize(0, 0);
    const int iconRoom = owner.sender ? iconSize.width() + context.px(standardSpacing) : 0;
    const int width = std::max(content.width() + padding.left() + padding.right(),
                               context.px(minimumBubbleWidth));
    const int height = std::max(content.height() + padding.top() + padding.bottom(),
                                context.px(minimumBubbleHeight));
    RowLayout layout;
    layout.width = rowWidth;
    layout.height = std::max(height, iconSize.height());
    layout.frame = QRect(owner.isOwn ? rowWidth - iconRoom - width : iconRoom,
                         layout.height - height, width, height);
    if (owner.sender) {
        layout.icon = QRect(QPoint(owner.isOwn ? rowWidth - iconSize.width() : 0,
                                   layout.height - iconSize.height()),
                            iconSize);
    }
    const QRect room = layout.frame.marginsRemoved(padding);
    layout.content =
        QRect(room.x() + (room.width() - content.width()) / 2,
              room.y() + (room.height() - content.height()) / 2, content.width(), content.height());
    return layout;
}

void paintBubble(QPainter& painter, const BubbleOwner& owner, const RowLayout& layout,
                 const RowContext& context, const RowPaint& what) {
    context.backgrounds.paint(
        painter, layout.frame, bubbleStyle(owner, context),
        owner.isOwn ? ChatBubbleShape::Direction::right : ChatBubbleShape::Direction::left,
        context.ratio, what.visible);
    if (owner.sender && layout.icon.intersects(what.visible)) {
        SenderIconView{*owner.sender}.paint(painter, layout.icon, context);
    }
}

Style::Aqua bubbleStyle(const BubbleOwner& owner, const RowContext& context) {
    return context.bubbleColors.styleForUser(owner.sender, owner.isOwn);
}

}  // namespace vell
