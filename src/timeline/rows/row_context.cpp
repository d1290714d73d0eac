// SPDX-License-Identifier: MIT
#include "timeline/rows/row_context.h"

#include <QFontInfo>
#include <algorithm>

namespace vell {
namespace {

constexpr qint64 smallestFont = 1;
constexpr qint64 largestFont = 1000;
constexpr qreal secondaryOpacity = 0.55;
constexpr qreal separatorOpacity = 0.15;

QColor faded(QColor color, qreal opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

}  // namespace

RowFonts RowFonts::make(const QFont& application, qint64 fontSize) {
    RowFonts fonts{application, application, application, application};
    fonts.message.setPixelSize(static_cast<int>(std::clamp(fontSize, smallestFont, largestFont)));
    fonts.boldBody.setBold(true);
    if (application.pixelSize() > 0) {
        fonts.footnote.setPixelSize(std::max(1, application.pixelSize() * 10 / 13));
    } else {
        fonts.footnote.setPointSizeF(application.pointSizeF() * 10 / 13);
    }
    return fonts;
}

RowColors RowColors::make(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Text);
    return {text,
            faded(text, secondaryOpacity),
            faded(text, separatorOpacity),
            palette.color(QPalette::Base),
            palette.color(QPalette::Highlight),
            palette.color(QPalette::HighlightedText)};
}

QRect RowContext::touchedPixels(const QRect& points) const {
    return QRectF(points.x() * ratio, points.y() * ratio, points.width() * ratio,
                  points.height() * ratio)
        .toAlignedRect();
}

QRect RowContext::touchedPoints(const QRect& pixels) const {
    return QRectF(pixels.x() / ratio, pixels.y() / ratio, pixels.width() / ratio,
                  pixels.height() / ratio)
        .toAlignedRect();
}

}  // namespace vell
