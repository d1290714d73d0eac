// SPDX-License-Identifier: MIT
#include "timeline/painting/scrolled_image.h"

#include <QPainter>
#include <algorithm>

namespace vell {

void ScrolledImage::create(QSize size) {
    image_ = QImage(size, QImage::Format_RGB32);
    first_ = 0;
}

void ScrolledImage::scrollDown(int lines) {
    const int height = image_.height();
    first_ = ((first_ - lines) % height + height) % height;
}

template <class Use>
void ScrolledImage::divide(int top, int bottom, Use use) const {
    const int height = image_.height();
    while (top < bottom) {
        const int line = (first_ + top) % height;
        const int count = std::min(bottom - top, height - line);
        use(top, line, count);
        top += count;
    }
}

void ScrolledImage::paint(int top, int bottom, const Paint& paint) {
    divide(std::max(top, 0), std::min(bottom, image_.height()), [&](int y, int line, int count) {
        QPainter painter(&image_);
        painter.setClipRect(0, line, image_.width(), count);
        painter.translate(0, line - y);
        paint(painter, QRect(0, y, image_.width(), count));
    });
}

void ScrolledImage::draw(QPainter& painter, const QRect& part) const {
    const QRect shown = part.intersected(image_.rect());
    divide(shown.top(), shown.bottom() + 1, [&](int y, int line, int count) {
        painter.drawImage(QPoint(shown.left(), y), image_,
                          QRect(shown.left(), line, shown.width(), count));
    });
}

}  // namespace vell
