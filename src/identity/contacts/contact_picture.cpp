// SPDX-License-Identifier: MIT
#include "identity/contacts/contact_picture.h"

#include <QCryptographicHash>
#include <utility>

#include "foundation/picture.h"
#include "toolkit/picture_decoder.h"
#include "toolkit/style.h"

namespace vell {
namespace {

constexpr int pixelsPerPoint = 2;
/// A card may be malicious, and many of them come at once.
constexpr qint64 mostPixels = 100'000'000;

bool isReasonable(const foundation::Picture& picture) {
    using foundation::PictureFormat;
    if (picture.format == PictureFormat::svg || picture.format == PictureFormat::pdf) return false;
    return picture.pixelSize &&
           qint64{picture.pixelSize->width()} * picture.pixelSize->height() <= mostPixels;
}

}  // namespace

std::optional<QImage> contactPicture(const QByteArray& encoded) {
    const auto picture = foundation::recognisePicture(encoded);
    if (!picture || !isReasonable(*picture)) return std::nullopt;
    const QSize pixels = (Style::userIconSize * pixelsPerPoint).toSize();
    const DecodedPicture decoded = decodePicture(*picture, pixels, Qt::IgnoreAspectRatio);
    if (!decoded) return std::nullopt;
    return decoded.picture.qxResize(Style::userIconSize, {}, pixelsPerPoint).image;
}

std::optional<QImage> ContactPictureCache::picture(const QByteArray& encoded) {
    if (encoded.isEmpty()) return std::nullopt;
    const QByteArray digest = QCryptographicHash::hash(encoded, QCryptographicHash::Sha1);
    {
        const std::lock_guard lock(mutex_);
        if (const auto known = recent_.constFind(digest); known != recent_.cend()) return *known;
        if (const auto known = older_.constFind(digest); known != older_.cend())
            return *recent_.insert(digest, *known);
    }
    const std::optional<QImage> made = contactPicture(encoded);
    const std::lock_guard lock(mutex_);
    return *recent_.insert(digest, made);
}

void ContactPictureCache::age() {
    const std::lock_guard lock(mutex_);
    older_ = std::exchange(recent_, {});
}

}  // namespace vell
