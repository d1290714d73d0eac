// SPDX-License-Identifier: MIT
#include "timeline/bubbles/fancy_background.h"

#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace vell {
namespace {

constexpr qreal wideBorderWidth = 2;
constexpr qreal wideBorderBlur = 3;
constexpr qreal narrowBorderWidth = 1;
constexpr qreal narrowBorderBlur = 1.5;
constexpr double narrowBorderOpacity = 0.8;
constexpr qreal glossBlur = 0.5;
constexpr double shadowOpacity = 0.64;
constexpr qreal shadowBlur = 1;  // the Gaussian's sigma for a shadow radius of 2
constexpr qreal shadowOffset = 1;

int divide255(int value) {
    return (value + 128 + ((value + 128) >> 8)) >> 8;
}

// Soft light of white onto each 8-bit value, less that value: what full coverage adds.
const std::array<int, 256>& softLightGain() {
    static const std::array<int, 256> gain = [] {
        std::array<int, 256> table{};
        for (int i = 0; i < 256; ++i) {
            const double v = i / 255.0;
            const double lit = v <= 0.25 ? ((16 * v - 12) * v + 4) * v : std::sqrt(v);
            table[static_cast<size_t>(i)] = static_cast<int>(std::lround(lit * 255)) - i;
        }
        return table;
    }();
    return gain;
}

/// What the two gradients are at one row; rows that agree look alike where the masks do.
struct LineColors {
    std::array<int, 3> base;
    int gloss;  ///< opacity of white, 0-255
    bool operator==(const LineColors&) const = default;
};

LineColors colorsAt(const FancyBackground& background, int row, int height, qreal ratio) {
    const auto& [top, bottom] = background.baseGradient;
    const double t = std::clamp((row + 0.5) / height, 0.0, 1.0);
    const auto mix = [t](float a, float b) {
        return static_cast<int>(std::lround((a + (b - a) * t) * 255));
    };
    const double glossTop = background.inset.top() * ratio;
    const double glossHeight = height - glossTop - background.inset.bottom() * ratio;
    const double g = std::clamp((row + 0.5 - glossTop) / glossHeight, 0.0, 1.0) * 2;
    const auto& stops = Style::glossGradient;
    const double opacity =
        g < 1 ? stops[0] + (stops[1] - stops[0]) * g : stops[1] + (stops[2] - stops[1]) * (g - 1);
    return {{mix(top.redF(), bottom.redF()), mix(top.greenF(), bottom.greenF()),
             mix(top.blueF(), bottom.blueF())},
            static_cast<int>(std::lround(opacity * 255))};
}

void composeRow(const BackgroundMasks& masks, int maskRow, const LineColors& colors, QRgb* out) {
    const uint8_t* outline = masks.outline.row(maskRow);
    const uint8_t* shadow = masks.shadow.row(maskRow);
    const uint8_t* wide = masks.wideBorder.row(maskRow);
    const uint8_t* narrow = masks.narrowBorder.row(maskRow);
    const uint8_t* gloss = masks.gloss.row(maskRow);
    const std::array<int, 256>& gain = softLightGain();
    static const int narrowOpacity = static_cast<int>(std::lround(narrowBorderOpacity * 255));
    static const int black = static_cast<int>(std::lround(shadowOpacity * 255));

    for (int x = 0; x < masks.outline.width(); ++x) {
        const int cover = outline[x];
        const int around = divide255(divide255(shadow[x] * black) * (255 - cover));
        if (cover == 0) {
            out[x] = qRgba(0, 0, 0, around);
            continue;
        }
        const int narrowCover = divide255(narrow[x] * narrowOpacity);
        const int white = divide255(gloss[x] * colors.gloss);
        std::array<int, 3> channels = colors.base;
        for (int& value : channels) {
            value += divide255(gain[static_cast<size_t>(value)] * wide[x]);
            value += divide255(gain[static_cast<size_t>(value)] * narrowCover);
            value += divide255((255 - value) * white);
            value = divide255(value * cover);
        }
        out[x] = qRgba(channels[0], channels[1], channels[2], cover + around);
    }
}

}  // namespace

int backgroundMargin(qreal ratio) {
    return static_cast<int>(std::ceil((3 * shadowBlur + shadowOffset + 1) * ratio));
}

int backgroundCapPixels(qreal ratio) {
    return static_cast<int>(std::ceil(backgroundCap * ratio));
}

BackgroundMasks makeBackgroundMasks(const ChatBubbleShape& shape, const QMarginsF& inset,
                                    QSize size, qreal ratio) {
    const int margin = backgroundMargin(ratio);
    const QSize area = size + QSize(2 * margin, 2 * margin);
    const QRectF bounds(QPointF(0, 0), QSizeF(size) / ratio);
    const auto onPixels = [&](const QPainterPath& path, qreal down = 0) {
        return QTransform(ratio, 0, 0, ratio, margin, margin + down).map(path);
    };
    const auto border = [&](qreal width, qreal blur) {
        const QPainterPath path = onPixels(shape.inset(width / 2).path(bounds));
        return CoverageMask::stroked(path, width * ratio, area).blurred(blur * ratio);
    };

    const QPainterPath outline = shape.path(bounds);
    BackgroundMasks masks;
    masks.size = size;
    masks.outline = CoverageMask::filled(onPixels(outline), area);
    masks.shadow = CoverageMask::filled(onPixels(outline, shadowOffset * ratio), area)
                       .blurred(shadowBlur * ratio);
    masks.wideBorder = border(wideBorderWidth, wideBorderBlur);
    masks.narrowBorder = border(narrowBorderWidth, narrowBorderBlur);
    masks.gloss = CoverageMask::filled(onPixels(shape.path(bounds.marginsRemoved(inset))), area)
                      .blurred(glossBlur * ratio);
    return masks;
}

QSize stretchableSize(QSize size, qreal ratio) {
    const int longest = 2 * backgroundCapPixels(ratio) + 1;
    return size.boundedTo(QSize(longest, longest));
}

bool looksAlike(const FancyBackground& background, BubbleRows a, BubbleRows b, int count,
                qreal ratio) {
    // Rows near the edges have shapes of their own, those between them share one.
    const int cap = backgroundCapPixels(ratio);
    const auto shape = [cap](BubbleRows rows, int i) {
        const int row = rows.first + i;
        return row <= cap ? row : std::max(cap, row - (rows.height - 2 * cap - 1));
    };
    const int last = count - 1;
    const int first = shape(a, 0);
    const int span = shape(a, last) - first;
    if (std::min(a.height, b.height) <= 2 * cap || (span != 0 && span != last) ||
        shape(b, 0) != first || shape(b, last) != first + span)
        return false;
    // The gradients run one way: what agrees at both ends agrees between them.
    const auto colors = [&](BubbleRows rows, int i) {
        return colorsAt(background, rows.first + i, rows.height, ratio);
    };
    const LineColors top = colors(a, 0);
    return top == colors(a, last) && top == colors(b, 0) && top == colors(b, last);
}

QImage composeBackground(const BackgroundMasks& masks, const FancyBackground& background,
                         int height, int firstRow, int rowCount, qreal ratio) {
    QImage image(masks.outline.width(), rowCount, QImage::Format_ARGB32_Premultiplied);
    const int margin = backgroundMargin(ratio);
    const int stretched = height - masks.size.height();
    const int middle = margin + masks.size.height() / 2;
    LineColors previousColors{};
    int previousMaskRow = -1;
    for (int i = 0; i < rowCount; ++i) {
        const int row = firstRow + i;
        const int maskRow = row <= middle ? row : std::max(middle, row - stretched);
        const LineColors colors = colorsAt(background, row - margin, height, ratio);
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(i));
        if (maskRow == previousMaskRow && colors == previousColors) {
            std::memcpy(out, image.constScanLine(i - 1), static_cast<size_t>(image.width()) * 4);
        } else {
            composeRow(masks, maskRow, colors, out);
        }
        previousColors = colors;
        previousMaskRow = maskRow;
    }
    return image;
}

}  // namespace vell
