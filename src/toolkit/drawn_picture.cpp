// SPDX-License-Identifier: MIT
#include "toolkit/drawn_picture.h"

#include <QPainter>
#include <QRectF>
#include <utility>

namespace vell {

DrawnPicture DrawnPicture::qxResize(QSizeF size, QMarginsF inset, qreal devicePixelRatio) const {
    QImage result((size * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull()) return {{}, isTemplate};
    result.fill(Qt::transparent);
    const QRectF target = QRectF(QPointF(), size).marginsRemoved(inset);
    if (target.isValid() && !image.isNull()) {
        // The painter alone would look at four pixels for each of its own and drop the rest.
        const QSize pixels = (target.size() * devicePixelRatio).toSize().expandedTo(QSize(1, 1));
        const QImage scaled = image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QPainter painter(&result);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.scale(devicePixelRatio, devicePixelRatio);
        painter.drawImage(target, scaled, QRectF(QPointF(), QSizeF(pixels)));
    }
    result.setDevicePixelRatio(devicePixelRatio);
    return {std::move(result), isTemplate};
}

}  // namespace vell
