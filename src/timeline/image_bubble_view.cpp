// SPDX-License-Identifier: MIT
#include "timeline/image_bubble_view.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace vell {
namespace {

constexpr qreal padding = 6;
constexpr qreal tailPadding = 10;
constexpr qreal cornerRadius = 16;
constexpr qreal highest = 480;
// What a picture gets whose size isn't known before it is decoded, in points.
constexpr QSize unknownSize(240, 180);

QSize fitted(QSize natural, QSize room) {
    if (natural.width() > room.width() || natural.height() > room.height()) {
        natural.scale(room, Qt::KeepAspectRatio);
    }
    return natural.expandedTo(QSize(1, 1));
}

}  // namespace

//      others                              own
//        ,------------------.                ,------------------.
//        |        6         |                |         6        |
//        | 10 [picture] 6   |                |   6 [picture] 10 |
//      _ |        6         |                |         6        | _
//      `-------------------'                  `-------------------'

RowLayout ImageBubbleView::measure(const RowContext& context, int width) const {
    const int plain = context.px(padding);
    const int tail = context.px(tailPadding);
    const QMargins margins(owner.isOwn ? plain : tail, plain, owner.isOwn ? tail : plain, plain);
    const int widest = std::min(widestBubble(owner, context, width) - plain - tail, width * 2 / 3);
    const QSize points = image.image().pixelSize.value_or(unknownSize);
    const QSize natural(context.px(points.width()), context.px(points.height()));
    const QSize size = fitted(natural, QSize(widest, context.px(highest)));
    return placeBubble(owner, size, margins, context, width);
}

void ImageBubbleView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                            const RowPaint& what) const {
    paintBubble(painter, owner, layout, context, what);
    const qreal radius =
        std::min<qreal>({cornerRadius * context.ratio, layout.content.width() / 2.0,
                         layout.content.height() / 2.0});
    QPainterPath rounded;
    rounded.addRoundedRect(layout.content, radius, radius);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(rounded, context.colors.separator);
    painter.restore();
}

}  // namespace vell
