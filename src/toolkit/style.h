#pragma once
// SPDX-License-Identifier: MIT
//
// Style: the look that people and bubbles share: the size of sender pictures, the nine bubble
// colours and everything that follows from one. Colours are sRGB, lengths are points. GUI thread
// only.

#include <QColor>
#include <QPointF>
#include <QSizeF>
#include <array>

namespace vell::Style {

/// The size in points of every sender picture and identicon.
inline constexpr QSizeF userIconSize{38.0, 38.0};

enum class Aqua {
    blueberry,
    lime,
    graphite,
    bondi,
    strawberry,
    grape,
    tangerine,
    indigo,
    ruby,
};
inline constexpr int aquaCount = 9;

/// A vertical gradient's two ends.
struct ColorPair {
    QColor top;
    QColor bottom;
};

struct TextShadow {
    QColor color;
    qreal radius;
    QPointF offset;
};

/// Opacities of white, evenly spaced from the top of a bubble to its bottom.
inline constexpr std::array<qreal, 3> glossGradient{0.6, 0.3, 0.0};

/// What a bubble's gradient runs through, opaque.
[[nodiscard]] const ColorPair& colors(Aqua aqua);
[[nodiscard]] bool isDark(Aqua aqua);
/// White on dark bubbles, black on the others.
[[nodiscard]] QColor textColor(Aqua aqua);
/// In the opposite of the text's colour, translucent.
[[nodiscard]] TextShadow textShadow(Aqua aqua);

}  // namespace vell::Style
