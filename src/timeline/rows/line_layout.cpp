// SPDX-License-Identifier: MIT
#include "timeline/rows/line_layout.h"

#include <QPainter>
#include <algorithm>

namespace vell {

RowLayout measureLine(const QString& text, const QFont& font, LineSide side,
                      const RowContext& context, int width) {
    // A spacer keeps the default distance and is never narrower than it.
    const int spacer = 2 * context.px(standardSpacing);
    const int spacers = side == LineSide::center ? 2 * spacer : spacer;
    TextFormat format;
    format.font = font;
    format.emojiFamily = context.fonts.emojiFamily;
    format.isCentered = side == LineSide::center;
    format.direction = context.direction;
    format.ratio = context.ratio;
    RowLayout layout;
    layout.text = std::make_shared<LaidOutText>(text, format, width - spacers);
    layout.width = width;
    layout.height = layout.text->height();
    const int free = width - layout.text->width();
    const int x = side == LineSide::left ? 0 : side == LineSide::right ? free : free / 2;
    layout.content = QRect(x, 0, layout.text->width(), layout.height);
    return layout;
}

void paintLine(QPainter& painter, const RowLayout& layout, const QColor& color,
               const RowContext& context, const RowPaint& what) {
    paintHighlights(painter, layout, color, context, what);
    painter.setPen(color);
    const QPoint origin = layout.content.topLeft();
    layout.text->paint(painter, origin, what.visible.top() - origin.y(),
                       what.visible.bottom() + 1 - origin.y());
}

}  // namespace vell
