#pragma once
// SPDX-License-Identifier: MIT
//
// PainterCanvas: paints pages with a painter, for printers and for pictures of pages on screen.

#include <QCache>
#include <QPainter>

#include "paper/bubble_parts.h"
#include "paper/canvas.h"
#include "paper/color_glyph.h"

namespace vell {

class PainterCanvas final : public PaperCanvas {
  public:
    /// Borrows the painter, which counts points of the paper from the sheet's corner.
    explicit PainterCanvas(QPainter& painter);

    void fill(const QRect& area, const QColor& color, qreal radius) override;
    void bubble(const QRect& frame, Style::Aqua aqua,
                ChatBubbleShape::Direction direction) override;
    void drawing(const QRect& area, const QImage& image) override;
    void photo(const QRect& area, const QImage& image, qreal radius) override;
    void text(const LaidOutText& text, QPoint origin, int from, int to,
              const QColor& color) override;
    /// Nothing: paper can't be clicked.
    void link(const QRect& area, const QString& address) override;

  private:
    static constexpr int keptBubbles = 64;
    static constexpr int keptEmoji = 256;

    void drawColored(const LineGlyphs& line, const GlyphCluster& cluster, QPoint origin,
                     qreal ratio);

    QPainter& painter_;
    QCache<BubbleKey, BubbleParts> bubbles_{keptBubbles};
    QCache<QString, ColorGlyph> emoji_{keptEmoji};
};

}  // namespace vell
