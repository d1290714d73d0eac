// SPDX-License-Identifier: MIT
#include "timeline/bubbles/coverage_mask.h"

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

std::vector<float> gaussianWeights(double sigma) {
    const int reach = blurReach(sigma);
    std::vector<float> weights;
    float sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(static_cast<float>(std::exp(-i * i / (2 * sigma * sigma))));
        sum += weights.back();
    }
    for (float& weight : weights)
        weight /= sum;
    return weights;
}

// Adds a row to sums, each value times the weight. Nothing but this is done often, so it is kept
// plain enough for compilers to make vector code of it.
void addWeighted(float* sums, const float* row, float weight, int count) {
    for (int x = 0; x < count; ++x)
        sums[x] += weight * row[x];
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
    for (int y = 0; y < mask.height_; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < mask.width_; ++x)
            *out++ = static_cast<uint8_t>(qAlpha(line[x]));
    }
    return mask;
}

CoverageMask CoverageMask::blurred(double sigma) const {
    if (sigma <= 0 || bytes_.empty()) return *this;
    const std::vector<float> weights = gaussianWeights(sigma);
    const int reach = blurReach(sigma);
    const auto rowSize = static_cast<size_t>(width_);

    // Across first, from rows with nothing on both sides.
    std::vector<float> padded(rowSize + 2 * static_cast<size_t>(reach));
    std::vector<float> across(bytes_.size());
    std::vector<char> isCovered(static_cast<size_t>(height_));  // between lines of text nothing is
    for (int y = 0; y < height_; ++y) {
        const uint8_t* in = row(y);
        if (std::all_of(in, in + width_, [](uint8_t cover) { return cover == 0; })) continue;
        isCovered[static_cast<size_t>(y)] = 1;
        std::copy(in, in + width_, padded.begin() + reach);
        float* sums = across.data() + static_cast<size_t>(y) * rowSize;
        for (int tap = 0; tap <= 2 * reach; ++tap) {
            addWeighted(sums, padded.data() + tap, weights[static_cast<size_t>(tap)], width_);
        }
    }
    CoverageMask result(width_, height_);
    std::vector<float> sums(rowSize);
    for (int y = 0; y < height_; ++y) {
        const int first = std::max(-reach, -y);
        const int last = std::min(reach, height_ - 1 - y);
        const auto rows = isCovered.begin() + y;
        if (std::find(rows + first, rows + last + 1, 1) == rows + last + 1) continue;
        std::fill(sums.begin(), sums.end(), 0.5f);
        for (int tap = first; tap <= last; ++tap) {
            if (rows[tap] == 0) continue;
            addWeighted(sums.data(), across.data() + static_cast<size_t>(y + tap) * rowSize,
                        weights[static_cast<size_t>(tap + reach)], width_);
        }
        uint8_t* out = result.bytes_.data() + static_cast<size_t>(y) * rowSize;
        for (size_t x = 0; x < rowSize; ++x) {
            out[x] = static_cast<uint8_t>(std::min(static_cast<int>(sums[x]), 255));
        }
    }
    return result;
}

}  // namespace vell
