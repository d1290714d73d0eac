#pragma once
// SPDX-License-Identifier: MIT
//
// ZoomedPicture: where a picture lies in a room: fitted into it, or enlarged and moved, but never
// so that it leaves more of the room empty than it must. Lengths are in points.

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace vell {

class ZoomedPicture {
  public:
    /// The picture's own size. A fitted picture stays fitted; of another the middle stays.
    void setSizes(QSizeF picture, QRectF room);
    void fit();
    /// Enlarges by a factor, or shrinks; what is at the anchor stays there.
    void zoom(qreal factor, QPointF anchor);
    void moveBy(QPointF distance);

    [[nodiscard]] bool isFitted() const { return isFitted_; }
    [[nodiscard]] QRectF rect() const;
    /// 1 for the picture's own size.
    [[nodiscard]] qreal scale() const { return scale_; }

  private:
    [[nodiscard]] qreal fittingScale() const;
    void limit();

    QSizeF picture_;
    QRectF room_;
    bool isFitted_ = true;
    qreal scale_ = 1;
    QPointF middle_;  // of the picture, from the room's
};

}  // namespace vell
