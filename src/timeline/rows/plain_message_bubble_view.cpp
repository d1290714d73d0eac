// SPDX-License-Identifier: MIT
#include "timeline/rows/plain_message_bubble_view.h"

#include <QPainter>
#include <algorithm>

#include "timeline/bubbles/chat_bubble_shape.h"
#include "timeline/text/text_tiles.h"

namespace vell {
namespace {

constexpr qreal verticalPadding = 10;
constexpr qreal horizontalPadding = 18;
// Lines longer than this are hard to read; narrower rows leave no choice.
constexpr qreal wideRow = 720;
constexpr qreal mostEms = 40;

// Never shrinks as the row grows: a wide row has at least the room of one that is just narrow.
int mostRoom(const BubbleOwner& owner, const RowContext& context, int rowWidth) {
    const int narrow = std::min(rowWidth, context.px(wideRow));
    const int ems = context.px(mostEms * context.fonts.message.pixelSize());
    return std::min(widestBubble(owner, context, rowWidth),
                    std::max(ems, widestBubble(owner, context, narrow)));
}

}  // namespace

//              ,------------- frame --------------.
//              |              10                  |
//              |    ,------- content -------.     |
//              | 18 |  the text             | 18  |
//      [icon] 8|    `-----------------------'     |
//      [    ] _|              10                  |
//      [    ]`------------------------------------'

RowLayout PlainMessageBubbleView::measure(const RowContext& context, int width) const {
    TextFormat format;
    format.font = context.fonts.message;
    format.emojiFamily = context.fonts.emojiFamily;
    format.lineSpacing = lineSpacing;
    format.isUnderlined = isLink;
    format.direction = context.direction;
    format.ratio = context.ratio;
    const int x = context.px(horizontalPadding);
    const int y = context.px(verticalPadding);
    auto text =
        std::make_shared<LaidOutText>(content, format, mostRoom(owner, context, width) - 2 * x);
    RowLayout layout = placeBubble(owner, QSize(text->width(), text->height()),
                                   QMargins(x, y, x, y), context, width);
    layout.text = std::move(text);
    return layout;
}

void PlainMessageBubbleView::paint(QPainter& painter, const RowLayout& layout,
                                   const RowContext& context, const RowPaint& what) const {
    paintBubble(painter, owner, layout, context, what);
    const Style::Aqua style = bubbleStyle(owner, context);
    const TextColors colors{Style::textColor(style), Style::textShadow(style)};
    const QPoint origin = layout.content.topLeft();
    paintHighlights(painter, layout, colors.text, context, what);
    context.textTiles.paint(painter, what.id, *layout.text, origin, what.visible, colors,
                            context.ratio);
}

}  // namespace vell
