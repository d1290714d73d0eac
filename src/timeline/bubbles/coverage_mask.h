#pragma once
// SPDX-License-Identifier: MIT
//
// CoverageMask: how much of each pixel something covers, 8 bits a pixel. All soft layers of a
// bubble and the shadow of text are white or black, so only such masks are ever blurred.

#include <QImage>
#include <QPainterPath>
#include <QSize>
#include <cstdint>
#include <vector>

namespace vell {

class CoverageMask {
  public:
    CoverageMask() = default;
    /// Nothing is covered. Width and height are device pixels.
    CoverageMask(int width, int height)
        : width_(width), height_(height), bytes_(static_cast<size_t>(width) * height) {}

    /// The inside of a path in device pixels, anti-aliased.
    static CoverageMask filled(const QPainterPath& path, QSize size);
    /// The line along a path in device pixels, with butt ends and mitred joins.
    static CoverageMask stroked(const QPainterPath& path, qreal lineWidth, QSize size);
    /// The opacity of a premultiplied picture.
    static CoverageMask ofAlpha(const QImage& image);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] const uint8_t* row(int y) const {
        return bytes_.data() + static_cast<size_t>(y) * width_;
    }
    [[nodiscard]] qsizetype byteCount() const { return static_cast<qsizetype>(bytes_.size()); }

    /// Convolved with a Gaussian, cut off at three sigmas; outside lies nothing.
    [[nodiscard]] CoverageMask blurred(double sigma) const;

  private:
    int width_ = 0;
    int height_ = 0;
    std::vector<uint8_t> bytes_;
};

/// How far a blur of this sigma reaches, in pixels.
[[nodiscard]] int blurReach(double sigma);

}  // namespace vell
