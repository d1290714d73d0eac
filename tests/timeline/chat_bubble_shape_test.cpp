// SPDX-License-Identifier: MIT
#include "timeline/bubbles/chat_bubble_shape.h"

#include <gtest/gtest.h>

namespace vell {
namespace {

using Direction = ChatBubbleShape::Direction;

bool passesThrough(const QPainterPath& path, QPointF point) {
    for (int i = 0; i < path.elementCount(); ++i) {
        if (QPointF(path.elementAt(i)) == point) return true;
    }
    return false;
}

TEST(ChatBubbleShape, TailReachesItsCornerAndTheBodyStaysFourPointsOff) {
    const QRectF rect(0, 0, 100, 40);
    const QPainterPath left = ChatBubbleShape(Direction::left).path(rect);
    const QPainterPath right = ChatBubbleShape(Direction::right).path(rect);
    EXPECT_TRUE(passesThrough(left, {0, 40}));
    EXPECT_TRUE(passesThrough(right, {100, 40}));
    EXPECT_FALSE(left.contains(QPointF(3.9, 20)));
    EXPECT_TRUE(left.contains(QPointF(4.1, 20)));
    EXPECT_TRUE(left.contains(QPointF(99.9, 20)));
    EXPECT_FALSE(right.contains(QPointF(96.1, 20)));
    EXPECT_TRUE(right.contains(QPointF(95.9, 20)));
    EXPECT_EQ(left.boundingRect(), rect);
    EXPECT_EQ(right.boundingRect(), rect);
}

TEST(ChatBubbleShape, RightOutlineMirrorsTheLeftAndStaysOpen) {
    const QRectF rect(10, 20, 130, 70);
    const QPainterPath left = ChatBubbleShape(Direction::left).path(rect);
    const QPainterPath right = ChatBubbleShape(Direction::right).path(rect);
    for (qreal x = 10.5; x < 140; x += 1) {
        for (qreal y = 20.5; y < 90; y += 1) {
            EXPECT_EQ(left.contains({x, y}), right.contains({150 - x, y})) << x << ' ' << y;
        }
    }
    EXPECT_EQ(right.elementAt(0).x, 35);
    EXPECT_EQ(right.currentPosition(), QPointF(115, 90));
    EXPECT_EQ(left.currentPosition(), QPointF(left.elementAt(0)));
}

TEST(ChatBubbleShape, InsetsAddUp) {
    const ChatBubbleShape shape = ChatBubbleShape(Direction::left, 1).inset(2);
    EXPECT_EQ(shape.shapeInset(), 3);
    EXPECT_EQ(shape.path(QRectF(0, 0, 100, 60)).boundingRect(), QRectF(3, 3, 94, 54));
}

}  // namespace
}  // namespace vell
