#pragma once
// SPDX-License-Identifier: MIT
//
// Canvas: a picture painted shape upon shape. Everything is integer arithmetic, so that a picture
// is the same bytes wherever it is drawn. Shapes are asked at sixteen points a pixel, which smooths
// their edges.
//
//     Canvas canvas(320, 240, {255, 255, 255});
//     canvas.fill(ellipse(160, 120, 40, 30), flat({200, 120, 40}));

#include <cstdint>
#include <functional>
#include <vector>

namespace samples {

struct Colour {
    int red = 0;
    int green = 0;
    int blue = 0;
    friend bool operator==(const Colour&, const Colour&) = default;
};

/// The first colour at 0, the second at 256.
[[nodiscard]] Colour mix(const Colour& a, const Colour& b, int share);

/// A point in eighths of a pixel.
struct Point {
    int64_t x = 0;
    int64_t y = 0;
};
constexpr int64_t unit = 8;

using Shape = std::function<bool(Point)>;
using Paint = std::function<Colour(Point)>;

// Shapes, in pixels.
[[nodiscard]] Shape ellipse(int x, int y, int radiusX, int radiusY);
[[nodiscard]] Shape polygon(const std::vector<Point>& corners);
/// A line through the points, round at its joints and ends.
[[nodiscard]] Shape stroke(const std::vector<Point>& points, int width);
[[nodiscard]] Shape rectangle(int x, int y, int width, int height);
/// Everything below a line of hills that rises between the two heights.
[[nodiscard]] Shape hills(unsigned seed, int top, int bottom, int wavelength);
[[nodiscard]] Shape both(Shape a, Shape b);
[[nodiscard]] Shape without(Shape a, Shape b);

// Paints.
[[nodiscard]] Paint flat(const Colour& colour);
/// Colours at equal distances between two heights.
[[nodiscard]] Paint downwards(int top, int bottom, std::vector<Colour> colours);

/// A number of 0 to 255 that looks drawn by lot.
[[nodiscard]] int noise(unsigned seed, int64_t x, int64_t y);

class Canvas {
  public:
    Canvas(int width, int height, const Colour& background);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] const Colour& at(int x, int y) const {
        return pixels_[static_cast<size_t>(y * width_ + x)];
    }
    /// Opacity 256 covers.
    void fill(const Shape& shape, const Paint& paint, int opacity = 256);

  private:
    int width_;
    int height_;
    std::vector<Colour> pixels_;
};

}  // namespace samples
