// SPDX-License-Identifier: MIT
#include "paper/painter_canvas.h"

#include <QPaintEngine>
#include <QPainterPath>
#include <QTextLayout>

#include "paper/glyph_clusters.h"
#include "paper/paper_format.h"
#include "timeline/text/laid_out_text.h"
#include "toolkit/emoji.h"

namespace vell {
namespace {

bool hasEmoji(const LaidOutText& text) {
    return !emojiFamily().isEmpty() && !findEmoji(text.text()).ranges.empty();
}

}  // namespace

PainterCanvas::PainterCanvas(QPainter& painter) : painter_(painter) {
    painter_.translate(PaperFormat::margin, PaperFormat::margin);
    painter_.scale(PaperFormat::scale, PaperFormat::scale);
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
}

void PainterCanvas::fill(const QRect& area, const QColor& color, qreal radius) {
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(color);
    if (radius > 0) {
        painter_.drawRoundedRect(area, radius, radius);
    } else {
        painter_.drawRect(area);
    }
}

void PainterCanvas::bubble(const QRect& frame, Style::Aqua aqua,
                           ChatBubbleShape::Direction direction) {
    const BubbleKey key = bubbleKey(frame, aqua, direction);
    if (!bubbles_.contains(key)) bubbles_.insert(key, new BubbleParts(makeBubbleParts(key)));
    const BubbleParts& parts = *bubbles_.object(key);
    const BubblePlaces places = bubblePlaces(frame, key);
    drawing(places.middle, parts.middle);
    drawing(places.left, parts.left);
    drawing(places.right, parts.right);
}

void PainterCanvas::drawing(const QRect& area, const QImage& image) {
    painter_.setRenderHint(QPainter::LosslessImageRendering);
    painter_.drawImage(area, image);
    painter_.setRenderHint(QPainter::LosslessImageRendering, false);
}

void PainterCanvas::photo(const QRect& area, const QImage& image, qreal radius) {
    QPainterPath rounded;
    rounded.addRoundedRect(area, radius, radius);
    const QSizeF shown = QSizeF(image.size()).scaled(area.size(), Qt::KeepAspectRatio);
    const QPointF corner = QRectF(area).center() - QPointF(shown.width(), shown.height()) / 2;
    painter_.save();
    painter_.setClipPath(rounded);
    painter_.drawImage(QRectF(corner, shown), image);
    painter_.restore();
}

void PainterCanvas::text(const LaidOutText& text, QPoint origin, int from, int to,
                         const QColor& color) {
    painter_.setPen(color);
    text.paint(painter_, origin, from, to);
    // Printers get fonts, and those in colours aren't among them.
    const bool isPainted = painter_.paintEngine()->type() == QPaintEngine::Raster &&
                           text.format().emojiFamily == emojiFamily();
    if (isPainted || !hasEmoji(text)) return;
    text.forEachLine(from, to, [&](const QTextLine& line, QStringView content, int top) {
        const LineGlyphs glyphs = lineGlyphs(line, content);
        for (const GlyphCluster& cluster : glyphs.clusters) {
            if (!cluster.text.front().isLetter() && isColored(glyphs, cluster))
                drawColored(glyphs, cluster, origin + QPoint(0, top), text.format().ratio);
        }
    });
}

void PainterCanvas::drawColored(const LineGlyphs& line, const GlyphCluster& cluster, QPoint origin,
                                qreal ratio) {
    const QString key = cluster.text.toString();
    if (!emoji_.contains(key)) emoji_.insert(key, new ColorGlyph(colorGlyph(line, cluster)));
    const ColorGlyph& glyph = *emoji_.object(key);
    if (glyph.image.isNull()) return;
    const qreal em = line.fonts[static_cast<size_t>(cluster.glyphs.front().font)].pixelSize();
    const qreal scale = em * ratio / ColorGlyph::em;
    const QPointF place = origin + cluster.place * ratio + glyph.origin * scale;
    painter_.drawImage(QRectF(place, QSizeF(glyph.image.size()) * scale), glyph.image);
}

void PainterCanvas::link(const QRect& /*area*/, const QString& /*address*/) {}

}  // namespace vell
