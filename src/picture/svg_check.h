#pragma once
// SPDX-License-Identifier: MIT
//
// Which SVG is drawn: such that consists of itself alone. What would fetch, run or embed anything
// is refused whole, so that nobody has to know what a renderer makes of it.

#include <QByteArray>
#include <QString>

namespace vell {

/// "that refer to other files are not drawn" and the like; empty when the document can be drawn.
[[nodiscard]] QString whyNotToDraw(const QByteArray& svg);

}  // namespace vell
