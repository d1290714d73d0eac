// SPDX-License-Identifier: MIT
#include "identity/contact_picture.h"

#include "foundation/picture.h"
#include "identity/style.h"
#include "toolkit/picture_decoder.h"

namespace vell {
namespace {

constexpr int kPixelsPerPoint = 2;

}  // namespace

std::optional<QImage> contactPicture(const QByteArray& encoded) {
    const auto picture = foundation::recognisePicture(encoded);
    if (!picture) return std::nullopt;
    const QSize pixels = (Style::userIconSize * kPixelsPerPoint).toSize();
    const DecodedPicture decoded = decodePicture(*picture, pixels, Qt::IgnoreAspectRatio);
    if (!decoded) return std::nullopt;
    return decoded.picture.qxResize(Style::userIconSize, {}, kPixelsPerPoint).image;
}

}  // namespace vell
