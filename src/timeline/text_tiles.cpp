// SPDX-License-Identifier: MIT
#include "timeline/text_tiles.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "timeline/coverage_mask.h"

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

// Puts the shadow of what is drawn in the picture below it.
void addShadow(QImage& image, const Style::TextShadow& shadow, qreal ratio) {
    const CoverageMask mask = CoverageMask::ofAlpha(image).blurred(shadowSigma(shadow, ratio));
    const auto dx = static_cast<int>(std::lround(shadow.offset.x() * ratio));
    const auto dy = static_cast<int>(std::lround(shadow.offset.y() * ratio));
    const int alpha = shadow.color.alpha();
    const int level = shadow.color.lightness();  // black or white
    for (int y = std::max(0, dy); y < std::min(image.height(), image.height() + dy); ++y) {
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        const uint8_t* cover = mask.row(y - dy);
        for (int x = std::max(0, dx); x < std::min(image.width(), image.width() + dx); ++x) {
            const int below = cover[x - dx] * alpha * (255 - qAlpha(out[x])) / (255 * 255);
            if (below == 0) continue;
            const int tint = below * level / 255;
            out[x] += qRgba(tint, tint, tint, below);
        }
    }
}

// Rows [top, bottom) of the text, as wide as it is and its overhang on both sides.
QImage render(const LaidOutText& text, int top, int bottom, const TextColors& colors, qreal ratio,
              const TextHighlight* highlight) {
    const int margin = overhang(colors.shadow, ratio);
    const int height = bottom - top + 2 * margin;
    QImage image(text.width() + 2 * margin, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(colors.text);
    text.paint(painter, QPoint(margin, margin - top), top - margin, bottom + margin, highlight);
    painter.end();
    addShadow(image, colors.shadow, ratio);
    return image.copy(0, margin, image.width(), bottom - top);
}

}  // namespace

void paintShadowedText(QPainter& painter, const LaidOutText& text, QPoint origin,
                       const QRect& visible, const TextColors& colors, qreal ratio,
                       const TextHighlight* highlight) {
    const int margin = overhang(colors.shadow, ratio);
    const int top = std::max(-margin, visible.top() - origin.y());
    const int bottom = std::min(text.height() + margin, visible.bottom() + 1 - origin.y());
    if (top >= bottom) return;
    const QImage image = render(text, top, bottom, colors, ratio, highlight);
    painter.drawImage(origin + QPoint(-margin, top), image);
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
        const int firstBand = std::max(0, visibleTop - top) / tileHeight;
        for (int band = firstBand; top + band * tileHeight < std::min(bottom, visibleBottom);
             ++band) {
            const int bandTop = top + band * tileHeight;
            const int bandBottom = std::min(bandTop + tileHeight, bottom);
            const Key key{id, block, band};
            QImage image;
            if (const QImage* known = tiles_.object(key)) {
                image = *known;
            } else {
                image = render(text, bandTop, bandBottom, colors, ratio, nullptr);
                tiles_.insert(key, new QImage(image), image.sizeInBytes());
            }
            painter.drawImage(origin + QPoint(-margin, bandTop), image);
        }
    }
}

}  // namespace vell
