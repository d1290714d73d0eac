// SPDX-License-Identifier: MIT
#include "canvas.h"

#include <algorithm>
#include <utility>

namespace samples {
namespace {

/// Whether the point lies within `radius` of the segment; all in eighths of a pixel.
bool isNear(Point p, Point a, Point b, int64_t radius) {
    const Point d{b.x - a.x, b.y - a.y};
    const Point v{p.x - a.x, p.y - a.y};
    const int64_t length = d.x * d.x + d.y * d.y;
    const int64_t along = v.x * d.x + v.y * d.y;
    if (along <= 0 || length == 0) return v.x * v.x + v.y * v.y <= radius * radius;
    if (along >= length) {
        const Point w{p.x - b.x, p.y - b.y};
        return w.x * w.x + w.y * w.y <= radius * radius;
    }
    const int64_t across = v.x * d.y - v.y * d.x;
    return across * across <= radius * radius * length;
}

}  // namespace

Colour mix(const Colour& a, const Colour& b, int share) {
    const auto channel = [share](int from, int to) { return from + (to - from) * share / 256; };
    return {channel(a.red, b.red), channel(a.green, b.green), channel(a.blue, b.blue)};
}

int noise(unsigned seed, int64_t x, int64_t y) {
    auto h = static_cast<uint32_t>(seed * 374761393u + static_cast<uint32_t>(x) * 668265263u +
                                   static_cast<uint32_t>(y) * 2246822519u);
    h = (h ^ h >> 13) * 1274126177u;
    h = (h ^ h >> 15) * 2654435761u;
    return static_cast<int>(h >> 24);
}

Shape ellipse(int x, int y, int radiusX, int radiusY) {
    const Point centre{x * unit, y * unit};
    const int64_t a = radiusX * unit;
    const int64_t b = radiusY * unit;
    return [=](Point p) {
        const int64_t dx = p.x - centre.x;
        const int64_t dy = p.y - centre.y;
        return dx * dx * b * b + dy * dy * a * a <= a * a * b * b;
    };
}

Shape polygon(const std::vector<Point>& corners) {
    return [corners](Point p) {
        bool inside = false;
        for (size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
            const Point a{corners[i].x * unit, corners[i].y * unit};
            const Point b{corners[j].x * unit, corners[j].y * unit};
            if ((a.y > p.y) == (b.y > p.y)) continue;
            const int64_t across = (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y);
            if ((across > 0) == (b.y > a.y)) inside = !inside;
        }
        return inside;
    };
}

Shape stroke(const std::vector<Point>& points, int width) {
    return [points, width](Point p) {
        for (size_t i = 0; i + 1 < points.size(); ++i) {
            const Point a{points[i].x * unit, points[i].y * unit};
            const Point b{points[i + 1].x * unit, points[i + 1].y * unit};
            if (isNear(p, a, b, width * unit / 2)) return true;
        }
        return false;
    };
}

Shape rectangle(int x, int y, int width, int height) {
    return [=](Point p) {
        return p.x >= x * unit && p.x < (x + width) * unit && p.y >= y * unit &&
               p.y < (y + height) * unit;
    };
}

Shape hills(unsigned seed, int top, int bottom, int wavelength) {
    return [=](Point p) {
        // Two octaves of noise, joined smoothly.
        int64_t height = 0;
        for (int octave = 0; octave < 2; ++octave) {
            const int64_t wave = wavelength * unit >> octave;
            const int64_t cell = p.x / wave;
            const int64_t t = p.x % wave * 256 / wave;
            const int64_t smooth = t * t * (768 - 2 * t) / 65536;
            const int64_t a = noise(seed, cell, octave);
            const int64_t b = noise(seed, cell + 1, octave);
            height += (a * 256 + (b - a) * smooth) >> octave;
        }
        return p.y >= bottom * unit - height * (bottom - top) * unit / (256 * 384);
    };
}

Shape both(Shape a, Shape b) {
    return [a = std::move(a), b = std::move(b)](Point p) { return a(p) && b(p); };
}

Shape without(Shape a, Shape b) {
    return [a = std::move(a), b = std::move(b)](Point p) { return a(p) && !b(p); };
}

Paint flat(const Colour& colour) {
    return [colour](Point) { return colour; };
}

Paint downwards(int top, int bottom, std::vector<Colour> colours) {
    return [=, colours = std::move(colours)](Point p) {
        const auto steps = static_cast<int64_t>(colours.size()) - 1;
        const int64_t range = (bottom - top) * unit;
        const int64_t place =
            std::clamp<int64_t>((p.y - top * unit) * steps * 256 / range, 0, steps * 256 - 1);
        const auto step = static_cast<size_t>(place / 256);
        return mix(colours[step], colours[step + 1], static_cast<int>(place % 256));
    };
}

Canvas::Canvas(int width, int height, const Colour& background)
    : width_(width), height_(height), pixels_(static_cast<size_t>(width * height), background) {}

void Canvas::fill(const Shape& shape, const Paint& paint, int opacity) {
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x) {
            int covered = 0;
            for (int i = 0; i < 16; ++i)
                covered += shape({x * unit + 1 + i % 4 * 2, y * unit + 1 + i / 4 * 2});
            if (covered == 0) continue;
            Colour& pixel = pixels_[static_cast<size_t>(y * width_ + x)];
            const Colour colour = paint({x * unit + unit / 2, y * unit + unit / 2});
            pixel = mix(pixel, colour, covered * opacity / 16);
        }
}

}  // namespace samples
