// SPDX-License-Identifier: MIT
#include "timeline/bubbles/chat_bubble_shape.h"

namespace vell {
namespace {

QPainterPath leftPath(qreal x, qreal y, qreal r, qreal b) {
    QPainterPath path;
    path.moveTo(x + 25, b);
    path.lineTo(r - 20, b);
    path.cubicTo(r - 8, b, r, b - 8, r, b - 20);
    path.lineTo(r, y + 20);
    path.cubicTo(r, y + 8, r - 8, y, r - 20, y);
    path.lineTo(x + 21, y);
    path.cubicTo(x + 12, y, x + 4, y + 8, x + 4, y + 20);
    path.lineTo(x + 4, b - 11);
    path.cubicTo(x + 4, b - 1, x, b, x, b);  // the tail's tip
    path.lineTo(x, b);
    path.cubicTo(x + 4, b, x + 8, b - 1, x + 11, b - 4);
    path.cubicTo(x + 16, b, x + 20, b, x + 25, b);
    return path;
}

QPainterPath rightPath(qreal x, qreal y, qreal r, qreal b) {
    QPainterPath path;
    path.moveTo(x + 25, b);
    path.lineTo(x + 20, b);
    path.cubicTo(x + 8, b, x, b - 8, x, b - 20);
    path.lineTo(x, y + 20);
    path.cubicTo(x, y + 8, x + 8, y, x + 20, y);
    path.lineTo(r - 21, y);
    path.cubicTo(r - 12, y, r - 4, y + 8, r - 4, y + 20);
    path.lineTo(r - 4, b - 11);
    path.cubicTo(r - 4, b - 1, r, b, r, b);  // the tail's tip
    path.lineTo(r, b);
    path.cubicTo(r - 4, b, r - 8, b - 1, r - 11, b - 4);
    path.cubicTo(r - 16, b, r - 20, b, r - 25, b);
    return path;
}

}  // namespace

QPainterPath ChatBubbleShape::path(const QRectF& rect) const {
    const qreal left = rect.left() + shapeInset_;
    const qreal top = rect.top() + shapeInset_;
    const qreal right = rect.right() - shapeInset_;
    const qreal bottom = rect.bottom() - shapeInset_;
    QPainterPath path = direction_ == Direction::left ? leftPath(left, top, right, bottom)
                                                      : rightPath(left, top, right, bottom);
    path.setFillRule(Qt::WindingFill);
    return path;
}

}  // namespace vell
