#pragma once
// SPDX-License-Identifier: MIT
//
// BubbleParts: the backgrounds of bubbles on paper, on white, each in three parts of which the
// middle one is as wide as needed. All bubbles of one colour and height share them, and so does a
// document.

#include <QImage>
#include <QRect>
#include <QSize>

#include "timeline/bubbles/chat_bubble_shape.h"
#include "toolkit/style.h"

namespace vell {

struct BubbleKey {
    ChatBubbleShape::Direction direction;
    Style::Aqua aqua;
    QSize size;  ///< of the smallest bubble that looks like it
    int height;
    friend bool operator==(const BubbleKey&, const BubbleKey&) = default;
    friend size_t qHash(const BubbleKey& key, size_t seed = 0) {
        return qHashMulti(seed, static_cast<int>(key.direction), static_cast<int>(key.aqua),
                          key.size.width(), key.size.height(), key.height);
    }
};

/// Which background a bubble of this frame has.
[[nodiscard]] BubbleKey bubbleKey(const QRect& frame, Style::Aqua aqua,
                                  ChatBubbleShape::Direction direction);

struct BubbleParts {
    QImage left;
    QImage middle;  ///< one column
    QImage right;
};

[[nodiscard]] BubbleParts makeBubbleParts(const BubbleKey& key);

/// Where the parts stand: the middle reaches a little below both others, so that no gap is seen.
struct BubblePlaces {
    QRect left;
    QRect middle;
    QRect right;
};
[[nodiscard]] BubblePlaces bubblePlaces(const QRect& frame, const BubbleKey& key);

}  // namespace vell
