// SPDX-License-Identifier: MIT
#include "paper/color_glyph.h"

#include <QGlyphRun>
#include <QPainter>
#include <algorithm>

#include "paper/light_emoji.h"
#include "toolkit/emoji.h"

namespace vell {
namespace {

constexpr size_t mostGlyphs = 8;

QRect usedArea(const QImage& image) {
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(row[x]) > 0) area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

}  // namespace

bool isColored(const LineGlyphs& line, const GlyphCluster& cluster) {
    return std::any_of(cluster.glyphs.begin(), cluster.glyphs.end(), [&](const auto& glyph) {
        const QRawFont& font = line.fonts[static_cast<size_t>(glyph.font)];
        const QString family = familyOf(font);
        return !family.isEmpty() &&
               (isLightEmoji(font) || family == emojiFamily() || !font.fontTable("CBLC").isEmpty());
    });
}

ColorGlyph colorGlyph(const LineGlyphs& line, const GlyphCluster& cluster) {
    constexpr int em = ColorGlyph::em;
    if (cluster.text.trimmed().isEmpty()) return {};
    const auto count = static_cast<int>(std::min(cluster.glyphs.size(), mostGlyphs));
    QImage image(2 * em * count, 2 * em, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QPoint origin(em / 2, em * 3 / 2);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const GlyphCluster::Glyph& glyph : cluster.glyphs) {
        QRawFont large = line.fonts[static_cast<size_t>(glyph.font)];
        if (!large.isValid()) continue;
        const qreal scale = em / large.pixelSize();
        if (isLightEmoji(large))
            large = paintedEmoji(em);
        else
            large.setPixelSize(em);
        QGlyphRun run;
        run.setRawFont(large);
        run.setGlyphIndexes({glyph.index});
        run.setPositions({QPointF(0, 0)});
        painter.drawGlyphRun(origin + glyph.offset * scale, run);
    }
    painter.end();
    const QRect area = usedArea(image);
    if (area.isEmpty()) return {};
    return {image.copy(area), area.topLeft() - origin};
}

}  // namespace vell
