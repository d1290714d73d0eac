// SPDX-License-Identifier: MIT
#include "timeline/rows/text_highlight.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "timeline/rows/row_layout.h"

namespace vell {
namespace {

constexpr float opacity = 0.88f;
constexpr float pictureOpacity = 0.45f;
constexpr float amber = 48 / 360.0f;
constexpr float orange = 28 / 360.0f;
constexpr qreal matchCorner = 3;  // points
constexpr qreal outlineWidth = 1.5;

bool isLight(const QColor& color) {
    return qGray(color.rgb()) > 127;
}

double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// What white stands out from by 4.5 to 1, even with a light bubble showing through.
bool isDeep(const QColor& color) {
    const auto over = [](float channel) { return channel * opacity + (1 - opacity); };
    return luminance(QColor::fromRgbF(over(color.redF()), over(color.greenF()),
                                      over(color.blueF()))) <= 1.05 / 4.5 - 0.05;
}

// Pale behind dark letters, deep behind light ones; yellow must be deeper than blue.
QColor behind(const QColor& text, float hue, float saturation, float pale) {
    if (!isLight(text)) return QColor::fromHslF(hue, saturation, pale, opacity);
    float lightness = 0.27f;
    while (!isDeep(QColor::fromHslF(hue, saturation, lightness)))
        lightness -= 0.01f;
    return QColor::fromHslF(hue, saturation, lightness, opacity);
}

QColor highlightColor(HighlightKind kind, const QColor& text, const RowContext& context) {
    switch (kind) {
        case HighlightKind::match:
            return behind(text, amber, 1.0f, 0.7f);
        case HighlightKind::currentMatch:
            return QColor::fromHslF(orange, 1.0f, isLight(text) ? 0.35f : 0.62f);
        case HighlightKind::selection:
            break;
    }
    const QColor hue = context.colors.highlight;
    return behind(text, std::max(hue.hslHueF(), 0.0f), hue.hslSaturationF(), 0.9f);
}

}  // namespace

void paintHighlights(QPainter& painter, const RowLayout& layout, const QColor& textColor,
                     const RowContext& context, const RowPaint& what) {
    if (what.highlights.empty()) return;
    const QPoint origin = layout.content.topLeft();
    // What lies behind a line is higher than the line.
    const int around = context.px(standardSpacing);
    const int top = what.visible.top() - origin.y() - around;
    const int bottom = what.visible.bottom() + 1 - origin.y() + around;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (const TextHighlight& highlight : what.highlights) {
        const bool isSelection = highlight.kind == HighlightKind::selection;
        const bool isCurrent = highlight.kind == HighlightKind::currentMatch;
        const QColor color = highlightColor(highlight.kind, textColor, context);
        const qreal corner = matchCorner * context.ratio;
        painter.setBrush(color);
        painter.setPen(isCurrent ? QPen(textColor, outlineWidth * context.ratio) : Qt::NoPen);
        // The lines of a selection touch each other.
        const int gap = isSelection ? layout.text->spacing() : 0;
        for (const QRect& line : layout.text->region(highlight.range, top, bottom)) {
            const QRect rect = line.translated(origin).adjusted(0, -gap / 2, 0, gap - gap / 2);
            if (isSelection) {
                painter.fillRect(rect, color);  // many large ones: several times faster
            } else {
                painter.drawRoundedRect(rect, corner, corner);
            }
        }
    }
    painter.restore();
}

QColor selectedPictureColor(const RowContext& context) {
    QColor color = context.colors.highlight;
    color.setAlphaF(pictureOpacity);
    return color;
}

}  // namespace vell
