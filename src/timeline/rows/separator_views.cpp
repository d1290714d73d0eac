// SPDX-License-Identifier: MIT
#include "timeline/rows/separator_views.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

#include "timeline/rows/line_layout.h"
#include "timeline/text/text_tiles.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

constexpr qreal labelPadding = 8;
constexpr qreal dividerThickness = 1;
constexpr qreal labelShadowRadius = 1.5;

constexpr qreal aboveHeading = 20;  // tells sessions apart when one scrolls fast
constexpr qreal headingPadding = 14;
constexpr qreal headingVerticalPadding = 5;
constexpr float headingOpacity = 0.07f;

}  // namespace

// The day separator, the label masking the divider behind it:
//
//      ------------------[8  Jan 2, 2006, 10:04 PM  8]------------------
//                         `-------- frame ---------'

RowLayout DaySeparatorView::measure(const RowContext& context, int width) const {
    const QString label = daySeparatorFormatter().string(timestamp);
    RowLayout layout = measureLine(label, context.fonts.boldBody, LineSide::center, context, width);
    const int padding = context.px(labelPadding);
    layout.frame = layout.content.adjusted(-padding, 0, padding, 0);
    return layout;
}

void DaySeparatorView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                             const RowPaint& what) const {
    const int thickness = std::max(1, context.px(dividerThickness));
    painter.fillRect(QRect(0, (layout.height - thickness) / 2, layout.width, thickness),
                     context.colors.separator);
    painter.fillRect(layout.frame, context.colors.background);
    paintHighlights(painter, layout, context.colors.secondaryLabel, context, what);
    QColor white(Qt::white);
    white.setAlphaF(0.6f);
    const TextColors colors{context.colors.secondaryLabel,
                            {white, labelShadowRadius, QPointF(0, 1)}};
    paintShadowedText(painter, *layout.text, layout.content.topLeft(), what.visible, colors,
                      context.ratio);
}

RowLayout SessionHeadingView::measure(const RowContext& context, int width) const {
    RowLayout layout = measureLine(name, context.fonts.body, LineSide::center, context,
                                   width - 2 * context.px(headingPadding));
    const int side = context.px(headingPadding);
    const int vertical = context.px(headingVerticalPadding);
    layout.width = width;
    layout.content.translate(side, context.px(aboveHeading) + vertical);
    layout.frame = layout.content.adjusted(-side, -vertical, side, vertical);
    layout.height = layout.frame.bottom() + 1;
    return layout;
}

void SessionHeadingView::paint(QPainter& painter, const RowLayout& layout,
                               const RowContext& context, const RowPaint& what) const {
    QColor field = context.colors.label;
    field.setAlphaF(headingOpacity);
    const qreal radius = (QFontMetricsF(context.fonts.body).height() * context.ratio +
                          2 * context.px(headingVerticalPadding)) /
                         2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(field);
    painter.drawRoundedRect(layout.frame, radius, radius);
    painter.restore();
    paintLine(painter, layout, context.colors.label, context, what);
}

RowLayout TimeSeparatorView::measure(const RowContext& context, int width) const {
    return measureLine(timeSeparatorFormatter().string(timestamp), context.fonts.body,
                       LineSide::center, context, width);
}

void TimeSeparatorView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                              const RowPaint& what) const {
    paintLine(painter, layout, context.colors.secondaryLabel, context, what);
}

}  // namespace vell
