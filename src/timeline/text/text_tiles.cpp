// SPDX-License-Identifier: MIT
#include "timeline/text/text_tiles.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

#include "timeline/bubbles/coverage_mask.h"

namespace vell {
namespace {

// A shadow's radius is twice its Gaussian's sigma.
double shadowSigma(const Style::TextShadow& shadow, qreal ratio) {
    return shadow.radius / 2 * ratio;
}

// What glyphs and their shadow may touch around the lines of a text.
int overhang(const Style::TextShadow& shadow, qreal ratio) {
    return blurReach(shadowSigma(shadow, ratio)) +
           static_cast<int>(std::ceil((std::abs(shadow.offset.y()) + 3) * ratio));
}

// Rows [top, bottom) of the picture, with the black or white shadow of what is drawn in it below.
QImage withShadow(const QImage& image, int top, int bottom, const Style::TextShadow& shadow,
                  qreal ratio) {
    QImage result = image.copy(0, top, image.width(), bottom - top);
    const CoverageMask cover = CoverageMask::ofAlpha(image).blurred(shadowSigma(shadow, ratio));
    const auto down = static_cast<int>(std::lround(shadow.offset.y() * ratio));
    const auto opacity = static_cast<uint32_t>(shadow.color.alpha());
    const uint32_t white = shadow.color.lightness() > 127 ? 0xff : 0;
    const int width = result.width();
    for (int y = std::max(top, down); y < bottom; ++y) {
        const uint8_t* row = cover.row(y - down);
        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y - top));
        for (int x = 0; x < width; ++x) {
            const uint32_t below = row[x] * opacity * (255 - (out[x] >> 24)) / (255 * 255);
            const uint32_t tint = below & white;
            out[x] += below << 24 | tint << 16 | tint << 8 | tint;
        }
    }
    return result;
}

// The columns of a picture that hold anything, as [first, end).
std::pair<int, int> usedColumns(const QImage& image) {
    const auto isInk = [](QRgb pixel) { return pixel != 0; };
    const int width = image.width();
    int first = width;
    int end = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        first = static_cast<int>(std::find_if(line, line + first, isInk) - line);
        const std::reverse_iterator last(line + width);
        const std::reverse_iterator known(line + end);
        end = width - static_cast<int>(std::find_if(last, known, isInk) - last);
    }
    return {std::min(first, end), end};
}

// Rows [top, bottom) of the text, as wide as it and its shadow are there. The picture's offset is
// where it belongs, from the text's left edge.
QImage render(const LaidOutText& text, int top, int bottom, const TextColors& colors, qreal ratio) {
    const int margin = overhang(colors.shadow, ratio);
    const int height = bottom - top + 2 * margin;
    QImage image(text.width() + 4 * margin, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(colors.text);
    text.paint(painter, QPoint(2 * margin, margin - top), top - margin, bottom + margin);
    painter.end();
    const auto [first, end] = usedColumns(image);
    const int left = std::max(first - margin, 0);
    const QImage used = image.copy(left, 0, std::min(end + margin, image.width()) - left, height);
    QImage shadowed = withShadow(used, margin, margin + bottom - top, colors.shadow, ratio);
    shadowed.setOffset(QPoint(left - 2 * margin, 0));
    return shadowed;
}

}  // namespace

void paintShadowedText(QPainter& painter, const LaidOutText& text, QPoint origin,
                       const QRect& visible, const TextColors& colors, qreal ratio) {
    const int margin = overhang(colors.shadow, ratio);
    const int top = std::max(-margin, visible.top() - origin.y());
    const int bottom = std::min(text.height() + margin, visible.bottom() + 1 - origin.y());
    if (top >= bottom) return;
    const QImage image = render(text, top, bottom, colors, ratio);
    painter.drawImage(origin + image.offset() + QPoint(0, top), image);
}

TextTiles::Tile::Tile(QImage picture) : image(std::move(picture)) {
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::all_of(line, line + width, [](QRgb pixel) { return pixel == 0; })) continue;
        if (!rows.empty() && rows.back().top + rows.back().height == y) {
            ++rows.back().height;
        } else {
            rows.push_back({y, 1});
        }
    }
}

void TextTiles::paint(QPainter& painter, qint64 id, const LaidOutText& text, QPoint origin,
                      const QRect& visible, const TextColors& colors, qreal ratio) {
    const int margin = overhang(colors.shadow, ratio);
    const int visibleTop = visible.top() - origin.y();
    const int visibleBottom = visible.bottom() + 1 - origin.y();
    // The pieces that keep their place: all of a short text, each block of a long one.
    const qsizetype first = text.isLong() ? text.blockAt(visibleTop - margin) : 0;
    const qsizetype end = text.isLong() ? text.blockCount() : 1;
    for (qsizetype block = first; block < end; ++block) {
        const auto top = static_cast<int>(text.isLong() ? text.blockTop(block) : 0) - margin;
        const auto bottom = block + 1 < end ? static_cast<int>(text.blockTop(block + 1)) - margin
                                            : text.height() + margin;
        if (top >= visibleBottom) break;
        // Just below the edge: a tile made now would be blank, and be kept.
        if (!text.isMeasured(block)) continue;
        const int firstBand = std::max(0, visibleTop - top) / tileHeight;
        for (int band = firstBand; top + band * tileHeight < std::min(bottom, visibleBottom);
             ++band) {
            const int bandTop = top + band * tileHeight;
            const int bandBottom = std::min(bandTop + tileHeight, bottom);
            const Key key{id, block, band};
            if (!tiles_.contains(key)) {
                auto* made = new Tile(render(text, bandTop, bandBottom, colors, ratio));
                tiles_.insert(key, made, made->image.sizeInBytes());
            }
            const Tile* tile = tiles_.object(key);
            if (!tile) continue;  // too large for the whole cache
            const QPoint corner = origin + tile->image.offset() + QPoint(0, bandTop);
            for (const auto& [rowTop, rowHeight] : tile->rows) {
                painter.drawImage(corner + QPoint(0, rowTop), tile->image,
                                  QRect(0, rowTop, tile->image.width(), rowHeight));
            }
        }
    }
}

}  // namespace vell
