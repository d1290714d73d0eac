// SPDX-License-Identifier: MIT
#include "timeline/bubbles/background_cache.h"

#include <algorithm>

namespace vell {
namespace {

// Fills an area with the pixels of a column, each repeated along its row.
void drawColumn(QPainter& painter, const QImage& image, int column, const QRect& area) {
    const auto at = [&](int y) {
        return reinterpret_cast<const QRgb*>(image.constScanLine(y))[column];
    };
    const int height = image.height();
    int runs = 1;
    for (int y = 1; y < height; ++y)
        runs += at(y) != at(y - 1);
    if (runs * 4 > height) {
        painter.drawImage(area, image, QRect(column, 0, 1, height));
        return;
    }
    // In a high bubble the gradients hardly change from row to row.
    for (int top = 0, bottom = 0; top < height; top = bottom) {
        while (bottom < height && at(bottom) == at(top))
            ++bottom;
        const QRect run(area.x(), area.y() + top, area.width(), bottom - top);
        if (qAlpha(at(top)) == 255) {
            painter.fillRect(run, QColor::fromRgb(at(top)));
        } else {
            // Its colour would be rounded twice.
            painter.drawImage(run, image, QRect(column, top, 1, 1));
        }
    }
}

// Draws the picture of a narrow bubble over the columns of a wider one: its middle column is
// repeated.
void drawSliced(QPainter& painter, const QImage& image, QPoint topLeft, int width) {
    const int cap = image.width() / 2;
    const int tail = image.width() - cap - 1;
    const int height = image.height();
    painter.drawImage(topLeft, image, QRect(0, 0, cap, height));
    drawColumn(painter, image, cap,
               QRect(topLeft.x() + cap, topLeft.y(), width - cap - tail, height));
    painter.drawImage(QPoint(topLeft.x() + width - tail, topLeft.y()), image,
                      QRect(cap + 1, 0, tail, height));
}

}  // namespace

QRect opaquePart(const QRect& bubble, qreal ratio) {
    if (bubble.height() <= BackgroundCache::tallest) return {};
    const int cap = backgroundCapPixels(ratio);
    return bubble.adjusted(cap, cap, -cap, -cap);
}

BackgroundCache::BackgroundCache(qsizetype maxBytes)
    : masks_(maxBytes / 8), slices_(maxBytes - maxBytes / 8) {}

std::shared_ptr<const BackgroundMasks> BackgroundCache::masks(const MaskKey& key) {
    if (const auto* known = masks_.object(key)) return *known;
    auto made = std::make_shared<const BackgroundMasks>(makeBackgroundMasks(
        ChatBubbleShape(key.direction), FancyBackground{ChatBubbleShape(key.direction), {}}.inset,
        key.size, key.ratio));
    masks_.insert(key, new std::shared_ptr<const BackgroundMasks>(made), made->byteCount());
    return made;
}

QImage BackgroundCache::compose(const Key& key, int firstRow, int rowCount) {
    const FancyBackground background{ChatBubbleShape(key.masks.direction), Style::colors(key.aqua)};
    return composeBackground(*masks(key.masks), background, key.height, firstRow, rowCount,
                             key.masks.ratio);
}

void BackgroundCache::paint(QPainter& painter, const QRect& rect, Style::Aqua aqua,
                            ChatBubbleShape::Direction direction, qreal ratio,
                            const QRect& visible) {
    const int margin = backgroundMargin(ratio);
    const QRect area = rect.marginsAdded(QMargins(margin, margin, margin, margin));
    const Key key{{direction, stretchableSize(rect.size(), ratio), ratio}, aqua, rect.height()};
    if (rect.height() <= tallest) {
        QImage image;
        if (const QImage* known = slices_.object(key)) {
            image = *known;
        } else {
            image = compose(key, 0, area.height());
            slices_.insert(key, new QImage(image), image.sizeInBytes());
        }
        drawSliced(painter, image, area.topLeft(), area.width());
        return;
    }
    const QRect band = area.intersected(visible);
    if (band.isEmpty()) return;
    const QImage image = compose(key, band.top() - area.top(), band.height());
    drawSliced(painter, image, QPoint(area.left(), band.top()), area.width());
}

}  // namespace vell
