#pragma once
// SPDX-License-Identifier: MIT
//
// ChatBubbleShape: the outline of a bubble. Lengths are points, y grows downwards.
//
//      left  ,------------.        right  ,------------.
//            |  others    |               |    own     |
//           _|            |               |            |_
//          `--------------'               `--------------'

#include <QPainterPath>
#include <QRectF>

namespace vell {

class ChatBubbleShape {
  public:
    /// The side of the tail.
    enum class Direction { left, right };

    explicit ChatBubbleShape(Direction direction, qreal inset = 0)
        : shapeInset_(inset), direction_(direction) {}

    [[nodiscard]] qreal shapeInset() const { return shapeInset_; }
    [[nodiscard]] Direction direction() const { return direction_; }

    /// The outline inside the rectangle less the inset. Fill it with the non-zero rule: the right
    /// one stays open along its bottom edge.
    [[nodiscard]] QPainterPath path(const QRectF& rect) const;
    /// A copy that lies further inside by `amount`.
    [[nodiscard]] ChatBubbleShape inset(qreal amount) const {
        return ChatBubbleShape(direction_, shapeInset_ + amount);
    }

    friend bool operator==(const ChatBubbleShape&, const ChatBubbleShape&) = default;

  private:
    qreal shapeInset_;
    Direction direction_;
};

/// Narrower or lower than this the outline's corners would cross.
inline constexpr qreal minimumBubbleWidth = 45;
inline constexpr qreal minimumBubbleHeight = 31;

}  // namespace vell
