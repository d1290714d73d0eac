// SPDX-License-Identifier: MIT
#include "identity/identicons/github_identicon.h"

#include <QPainter>
#include <QRect>
#include <cmath>

namespace vell {
namespace {

/// The pixels whose centres lie in the rectangle: how a square is filled without smooth edges.
QRect pixels(const QRectF& rect) {
    const auto first = [](double edge) { return static_cast<int>(std::ceil(edge - 0.5)); };
    return QRect(QPoint(first(rect.left()), first(rect.top())),
                 QPoint(first(rect.right()) - 1, first(rect.bottom()) - 1));
}

}  // namespace

QImage GitHubIdenticon::icon(quint32 number, QSizeF size) const {
    QImage canvas = iconCanvas(size.width(), size.height());
    const QColor ink = color(static_cast<quint16>(number >> 16));
    const double width = size.width() / static_cast<double>(numberOfColumns);
    const double height = size.height() / static_cast<double>(numberOfRows);
    QPainter painter(&canvas);
    const auto fill = [&](int column, int row) {  // row 0 stands at the bottom
        const QRectF cell(column * width, canvas.height() - (row + 1) * height, width, height);
        painter.fillRect(pixels(cell), ink);
    };
    for (int row = 0; row < numberOfRowComponents; row++) {
        for (int component = 0; component < numberOfColumnComponents; component++) {
            if (!((number >> (numberOfRows * row + component)) & 1)) continue;
            fill(component, row);
            const int mirror = static_cast<int>(numberOfColumns) - 1 - component;
            if (component < mirror) fill(mirror, row);
        }
    }
    return canvas;
}

}  // namespace vell
