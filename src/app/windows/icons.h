#pragma once
// SPDX-License-Identifier: MIT
//
// The icons of commands, drawn in the colour of the text beside them: they look alike in light and
// dark palettes and need no icon theme, whose lookup would also delay the first window.

#include <QIcon>

namespace vell {

/// One sheet on another.
[[nodiscard]] QIcon copyIcon();
/// Two people.
[[nodiscard]] QIcon peopleIcon();
/// Lines that grow shorter.
[[nodiscard]] QIcon sortIcon();
/// A magnifying glass.
[[nodiscard]] QIcon searchIcon();
/// Three columns of different heights.
[[nodiscard]] QIcon chartIcon();
/// A plus sign.
[[nodiscard]] QIcon addIcon();

}  // namespace vell
