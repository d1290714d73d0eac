// SPDX-License-Identifier: MIT
#include "app/documents/viewer/zoomed_picture.h"

#include <algorithm>

namespace vell {
namespace {

constexpr qreal largestScale = 16;

}  // namespace

void ZoomedPicture::setSizes(QSizeF picture, QRectF room) {
    picture_ = picture;
    room_ = room;
    if (isFitted_) {
        fit();
    } else {
        limit();
    }
}

void ZoomedPicture::fit() {
    isFitted_ = true;
    scale_ = fittingScale();
    middle_ = {};
}

void ZoomedPicture::zoom(qreal factor, QPointF anchor) {
    const qreal wanted = std::clamp(scale_ * factor, fittingScale(), largestScale);
    const QPointF fromMiddle = anchor - room_.center() - middle_;
    middle_ += fromMiddle * (1 - wanted / scale_);
    scale_ = wanted;
    isFitted_ = scale_ <= fittingScale();
    limit();
}

void ZoomedPicture::moveBy(QPointF distance) {
    middle_ += distance;
    limit();
}

QRectF ZoomedPicture::rect() const {
    const QSizeF size = picture_ * scale_;
    return {room_.center() + middle_ - QPointF(size.width(), size.height()) / 2, size};
}

qreal ZoomedPicture::fittingScale() const {
    if (picture_.isEmpty() || room_.isEmpty()) return 1;
    return std::min({1.0, room_.width() / picture_.width(), room_.height() / picture_.height()});
}

void ZoomedPicture::limit() {
    const QSizeF most = (picture_ * scale_ - room_.size()).expandedTo(QSizeF(0, 0)) / 2;
    middle_ = {std::clamp(middle_.x(), -most.width(), most.width()),
               std::clamp(middle_.y(), -most.height(), most.height())};
}

}  // namespace vell
