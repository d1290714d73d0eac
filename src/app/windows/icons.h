#pragma once
// SPDX-License-Identifier: MIT
//
// The icons of commands, drawn in the colour of the text beside them: they look alike in light and
// dark palettes and need no icon theme, whose lookup would also delay the first window.

#include <QIcon>

namespace vell {

/// One sheet on another.
[[nodiscard]] QIcon copyIcon();

}  // namespace vell
