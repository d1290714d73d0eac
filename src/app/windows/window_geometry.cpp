// SPDX-License-Identifier: MIT
#include "app/windows/window_geometry.h"

#include <QDataStream>
#include <QScreen>

namespace vell {

bool restoreWindow(QWidget& window, const QByteArray& geometry) {
    if (!window.restoreGeometry(geometry)) return false;
    QDataStream stream(geometry);
    stream.setVersion(QDataStream::Qt_4_0);
    quint32 mark = 0;
    quint32 version = 0;
    QRect frame;
    QRect content;
    stream >> mark >> version >> frame >> content;
    const bool fills = window.isMaximized() || window.isFullScreen();
    if (!fills && window.screen()->availableGeometry().contains(frame)) window.setGeometry(content);
    return true;
}

}  // namespace vell
