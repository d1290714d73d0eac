#pragma once
// SPDX-License-Identifier: MIT
//
// Where windows that open by themselves go, so that none hides another that is to be read with it.

#include <QList>
#include <QMargins>
#include <QPoint>
#include <QRect>

class QWidget;

namespace vell {

/// What the desktop adds to a window, roughly, in points.
inline constexpr QMargins usualFrame(4, 32, 4, 6);

/// The place nearest to the preferred one at which the frame covers none of the `clear` ones and
/// doesn't lie exactly on one of the `siblings`, which it is cascaded from. The preferred place
/// when the screen has no room.
[[nodiscard]] QPoint freePlace(const QRect& preferred, const QList<QRect>& clear,
                               const QList<QRect>& siblings, const QRect& screen);

/// The window's frame, for one that isn't on the screen yet as its size lets expect.
[[nodiscard]] QRect expectedFrame(const QWidget& window);

/// Makes room for a pane beside what the window shows, where the screen has it.
void widen(QWidget& window, int points);

}  // namespace vell
