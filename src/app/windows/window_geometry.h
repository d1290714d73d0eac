#pragma once
// SPDX-License-Identifier: MIT
//
// Restores a window to where QWidget::saveGeometry() recorded it.

#include <QByteArray>
#include <QWidget>

namespace vell {

/// QWidget::restoreGeometry(), except that a window whose frame fits on its screen goes exactly
/// where it was. (restoreGeometry() makes room for a title bar of the style's height, whatever the
/// desktop's is, and moves a window at the top edge down a few pixels.) False if the bytes are not
/// a geometry.
bool restoreWindow(QWidget& window, const QByteArray& geometry);

}  // namespace vell
