#pragma once
// SPDX-License-Identifier: MIT
//
// ScrolledImage: a picture whose lines move up and down without being copied: its lines lie in a
// ring, and scrolling only says where the first one is.
//
//     image.scrollDown(120);  // the first 120 lines are to be painted anew
//     image.paint(0, 120, [](QPainter& painter, const QRect& part) { ... });
//     image.draw(screen, part);

#include <QImage>
#include <QRect>
#include <functional>

class QPainter;

namespace vell {

class ScrolledImage {
  public:
    [[nodiscard]] bool isNull() const { return image_.isNull(); }
    [[nodiscard]] QSize size() const { return image_.size(); }
    /// Opaque; its lines are still to be painted.
    void create(QSize size);
    void clear() { image_ = QImage(); }

    /// Moves all lines down, or up by a negative number, by less than the height. Lines that come
    /// in are to be painted.
    void scrollDown(int lines);
    /// Paints lines [top, bottom): once or twice `paint` gets a painter that counts from the
    /// picture's top left corner, and the part to be painted; nothing outside is touched.
    using Paint = std::function<void(QPainter& painter, const QRect& part)>;
    void paint(int top, int bottom, const Paint& paint);
    /// Draws a part of the picture at its own place.
    void draw(QPainter& painter, const QRect& part) const;

  private:
    /// Divides lines [top, bottom) where the ring ends.
    template <class Use>
    void divide(int top, int bottom, Use use) const;

    QImage image_;
    int first_ = 0;  // where in the image the first line is
};

}  // namespace vell
