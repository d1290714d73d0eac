// SPDX-License-Identifier: MIT
#include "identity/contact_picture.h"

#include <QBuffer>
#include <QImageReader>

#include "identity/style.h"

namespace vell {

std::optional<QImage> contactPicture(const QByteArray& encoded) {
    if (encoded.isEmpty()) return std::nullopt;
    QBuffer buffer;
    buffer.setData(encoded);
    QImageReader reader(&buffer);
    QImage image = reader.read();
    if (image.isNull()) return std::nullopt;
    image = image.scaled((Style::userIconSize * 2).toSize(), Qt::IgnoreAspectRatio,
                         Qt::SmoothTransformation);
    image.setDevicePixelRatio(2);
    return image;
}

}  // namespace vell
