#pragma once
// SPDX-License-Identifier: MIT
//
// What of a picture's header matters only when it is shown.

#include "foundation/picture.h"

namespace foundation {

/// How many pixels a point has on the screens that a picture was made for: 2 where it has 144 dots
/// an inch, 3 where it has 216. Other densities are those of printers and scanners and say nothing
/// about screens: 1.
[[nodiscard]] int pixelsPerPoint(const Picture& picture);

/// Whether a GIF has more than one frame. Takes time that grows with the first.
[[nodiscard]] bool isAnimated(const Picture& picture);

[[nodiscard]] PictureTraits traitsOf(const Picture& picture);

}  // namespace foundation
