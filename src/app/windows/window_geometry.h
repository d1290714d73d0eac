#pragma once
// SPDX-License-Identifier: MIT
//
// Puts a window back where QWidget::saveGeometry() found it.

#include <QByteArray>
#include <QWidget>

namespace vell {

/// QWidget::restoreGeometry(), which makes room for a title bar of the style's height, whatever the
/// desktop's is: a window at the top edge came back a few pixels lower. One whose frame fits on its
/// screen goes exactly where it was. False if the bytes are no geometry.
bool restoreWindow(QWidget& window, const QByteArray& geometry);

}  // namespace vell
