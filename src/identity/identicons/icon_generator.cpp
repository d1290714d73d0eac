// SPDX-License-Identifier: MIT
#include "identity/identicons/icon_generator.h"

#include <QStringEncoder>
#include <cmath>

#include "foundation/checked.h"

namespace vell {
namespace {

/// Far more than any icon, and little enough for every paint engine.
constexpr double maxSide = 16384;

}  // namespace

QImage iconCanvas(double width, double height) {
    const auto usable = [](double side) { return side >= 1 && side <= maxSide; };  // NaN: no
    if (!usable(width) || !usable(height)) foundation::fatal("an icon of an impossible size");
    QImage canvas(static_cast<int>(width), static_cast<int>(height),
                  QImage::Format_ARGB32_Premultiplied);
    if (canvas.isNull()) foundation::fatal("no memory for an icon");
    canvas.fill(Qt::transparent);
    return canvas;
}

QImage IconGenerator::icon(quint32 number, QSizeF size, qreal scale) const {
    QImage picture = icon(number, size * scale);
    // Not simply `scale`: the pixels were rounded, the points are what was asked for.
    picture.setDevicePixelRatio(picture.width() / size.width());
    return picture;
}

QImage IconGenerator::icon(QByteArrayView data, QSizeF size, qreal scale) const {
    return icon(jenkinsHash(data), size, scale);
}

std::optional<QImage> IconGenerator::icon(QStringView string, QSizeF size, qreal scale) const {
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray bytes = encoder.encode(string);
    if (encoder.hasError()) return std::nullopt;
    return icon(QByteArrayView(bytes), size, scale);
}

quint32 jenkinsHash(QByteArrayView data) {
    quint32 hash = 0;
    for (const char byte : data) {
        hash += static_cast<quint8>(byte);
        hash += hash << 10;
        hash ^= hash >> 6;
    }
    hash += hash << 3;
    hash ^= hash >> 11;
    hash += hash << 15;
    return hash;
}

QColor color(quint16 value) {
    const auto component = [value](int shift) { return (((value >> shift) & 31) * 255 + 15) / 31; };
    return QColor(component(10), component(5), component(0));
}

std::optional<QImage> scale(const QImage& image, int width, int height) {
    if (image.width() == width && image.height() == height) return image;
    if (width <= 0 || height <= 0) return std::nullopt;
    QImage scaled = image.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                        .convertToFormat(image.format());
    if (scaled.isNull()) return std::nullopt;
    return scaled;
}

}  // namespace vell
