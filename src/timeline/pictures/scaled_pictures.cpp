// SPDX-License-Identifier: MIT
#include "timeline/pictures/scaled_pictures.h"

namespace vell {

QImage ScaledPictures::image(const QImage& picture, QSize pixels) {
    if (picture.size() == pixels) return picture;
    const Key key{picture.cacheKey(), pixels};
    if (const QImage* known = images_.object(key)) return *known;
    // The painter's own format, so that it has nothing to convert either.
    QImage scaled = picture.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    images_.insert(key, new QImage(scaled), scaled.sizeInBytes());
    return scaled;
}

ScaledPictures& ScaledPictures::shared() {
    static ScaledPictures pictures;
    return pictures;
}

}  // namespace vell
