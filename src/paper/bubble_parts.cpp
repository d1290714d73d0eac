// SPDX-License-Identifier: MIT
#include "paper/bubble_parts.h"

#include "paper/paper_format.h"
#include "timeline/bubbles/fancy_background.h"

namespace vell {
namespace {

constexpr qreal ratio = PaperFormat::ratio;
constexpr int overlap = 6;
// How far a shadow reaches above a bubble, in device pixels; more white would cover the shadow of
// the bubble above.
constexpr int above = 4;

QImage onWhite(const QImage& image) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < result.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const int white = 255 - qAlpha(row[x]);
            row[x] = qRgb(qRed(row[x]) + white, qGreen(row[x]) + white, qBlue(row[x]) + white);
        }
    }
    return result;
}

int leftWidth(const BubbleKey& key) {
    return (key.size.width() + 2 * backgroundMargin(ratio)) / 2;
}

int rightWidth(const BubbleKey& key) {
    return key.size.width() + 2 * backgroundMargin(ratio) - leftWidth(key) - 1;
}

}  // namespace

BubbleKey bubbleKey(const QRect& frame, Style::Aqua aqua, ChatBubbleShape::Direction direction) {
    return {direction, aqua, stretchableSize(frame.size(), ratio), frame.height()};
}

BubbleParts makeBubbleParts(const BubbleKey& key) {
    const FancyBackground style{ChatBubbleShape(key.direction), Style::colors(key.aqua)};
    const BackgroundMasks masks = makeBackgroundMasks(style.shape, style.inset, key.size, ratio);
    const int margin = backgroundMargin(ratio);
    const int height = key.height + above + margin;
    const QImage image =
        onWhite(composeBackground(masks, style, key.height, margin - above, height, ratio));
    const int left = leftWidth(key);
    return {image.copy(0, 0, left, height), image.copy(left, 0, 1, height),
            image.copy(left + 1, 0, rightWidth(key), height)};
}

BubblePlaces bubblePlaces(const QRect& frame, const BubbleKey& key) {
    const int margin = backgroundMargin(ratio);
    const QRect area = frame.marginsAdded(QMargins(margin, above, margin, margin));
    const int left = leftWidth(key);
    const int right = rightWidth(key);
    return {QRect(area.x(), area.y(), left, area.height()),
            QRect(area.x() + left - overlap, area.y(), area.width() - left - right + 2 * overlap,
                  area.height()),
            QRect(area.right() + 1 - right, area.y(), right, area.height())};
}

}  // namespace vell
