#pragma once
// SPDX-License-Identifier: MIT
//
// What the look of people and of bubbles shares. The timeline adds its colours to this namespace.

#include <QSizeF>

namespace vell::Style {

/// The size in points of every sender picture and identicon.
inline constexpr QSizeF userIconSize{38.0, 38.0};

}  // namespace vell::Style
