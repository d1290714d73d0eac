// SPDX-License-Identifier: MIT
#include "timeline/coverage_mask.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vell {
namespace {

QImage canvas(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

// Weights of 16 bits that sum to 65536 exactly, so that a flat area stays as it is.
std::vector<uint32_t> gaussianWeights(double sigma) {
    const int reach = blurReach(sigma);
    std::vector<double> exact;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        exact.push_back(std::exp(-i * i / (2 * sigma * sigma)));
        sum += exact.back();
    }
    std::vector<uint32_t> weights;
    uint32_t total = 0;
    for (const double weight : exact) {
        weights.push_back(static_cast<uint32_t>(std::lround(weight / sum * 65536)));
        total += weights.back();
    }
    weights[static_cast<size_t>(reach)] += 65536 - total;
    return weights;
}

}  // namespace

int blurReach(double sigma) {
    return static_cast<int>(std::ceil(3 * sigma));
}

CoverageMask CoverageMask::filled(const QPainterPath& path, QSize size) {
    QImage image = canvas(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, Qt::white);
    painter.end();
    return ofAlpha(image);
}

CoverageMask CoverageMask::stroked(const QPainterPath& path, qreal lineWidth, QSize size) {
    QImage image = canvas(size);
    QPen pen(Qt::white, lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    pen.setMiterLimit(10);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(path, pen);
    painter.end();
    return ofAlpha(image);
}

CoverageMask CoverageMask::ofAlpha(const QImage& image) {
    CoverageMask mask(image.width(), image.height());
    uint8_t* out = mask.bytes_.data();
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            *out++ = static_cast<uint8_t>(qAlpha(line[x]));
    }
    return mask;
}

CoverageMask CoverageMask::blurred(double sigma) const {
    if (sigma <= 0 || bytes_.empty()) return *this;
    const std::vector<uint32_t> weights = gaussianWeights(sigma);
    const int reach = blurReach(sigma);

    // Both passes add whole shifted rows, which compilers turn into vector code. The first keeps 8
    // bits more than the masks have.
    std::vector<uint32_t> sums(static_cast<size_t>(width_));
    std::vector<uint16_t> across(bytes_.size());
    for (int y = 0; y < height_; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        const uint8_t* in = row(y);
        for (int tap = -reach; tap <= reach; ++tap) {
            const uint32_t weight = weights[static_cast<size_t>(tap + reach)];
            const int from = std::max(0, -tap);
            const int to = std::min(width_, width_ - tap);
            for (int x = from; x < to; ++x)
                sums[static_cast<size_t>(x)] += weight * in[x + tap];
        }
        uint16_t* out = across.data() + static_cast<size_t>(y) * width_;
        for (int x = 0; x < width_; ++x) {
            out[x] = static_cast<uint16_t>((sums[static_cast<size_t>(x)] + 128) >> 8);
        }
    }

    CoverageMask result(width_, height_);
    for (int y = 0; y < height_; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        for (int tap = std::max(-reach, -y); tap <= std::min(reach, height_ - 1 - y); ++tap) {
            const uint32_t weight = weights[static_cast<size_t>(tap + reach)];
            const uint16_t* in = across.data() + static_cast<size_t>(y + tap) * width_;
            for (int x = 0; x < width_; ++x)
                sums[static_cast<size_t>(x)] += weight * in[x];
        }
        uint8_t* out = result.bytes_.data() + static_cast<size_t>(y) * width_;
        for (int x = 0; x < width_; ++x) {
            out[x] = static_cast<uint8_t>((sums[static_cast<size_t>(x)] + (1u << 23)) >> 24);
        }
    }
    return result;
}

}  // namespace vell
