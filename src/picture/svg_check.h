#pragma once
// SPDX-License-Identifier: MIT
//
// Which SVG is drawn: only self-contained documents. One that would fetch, run or embed anything is
// refused as a whole, whatever a renderer would make of it.

#include <QByteArray>
#include <QString>

namespace vell {

/// "that refer to other files are not drawn" and the like; empty when the document can be drawn.
[[nodiscard]] QString whyNotToDraw(const QByteArray& svg);

}  // namespace vell
