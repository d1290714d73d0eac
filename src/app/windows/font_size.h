#pragma once
// SPDX-License-Identifier: MIT
//
// What font commands do to the timeline's font size: steps of one, any size from the font panel, no
// bounds; arithmetic that overflows stops the program.

#include <QtGlobal>

namespace vell {

/// What the font panel or a menu has just done; the raw values are the platform's.
enum class FontAction : int {
    noChange = 0,
    viaPanel = 1,
    addTrait = 2,
    sizeUp = 3,
    sizeDown = 4,
    heavier = 5,
    lighter = 6,
    removeTrait = 7,
};

/// The size after the action; prints a line for actions that change nothing. `panelPointSize` is
/// the size of the panel's selected font, used for viaPanel alone.
[[nodiscard]] qint64 fontSizeAfter(FontAction action, qint64 fontSize, double panelPointSize);

}  // namespace vell
