// SPDX-License-Identifier: MIT
#include "paper/painter_canvas.h"

#include <QPainterPath>

#include "paper/paper_format.h"
#include "timeline/text/laid_out_text.h"

namespace vell {

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
}

void PainterCanvas::link(const QRect& /*area*/, const QString& /*address*/) {}

}  // namespace vell
