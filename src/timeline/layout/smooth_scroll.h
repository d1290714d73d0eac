#pragma once
// SPDX-License-Identifier: MIT
//
// SmoothScroll: spreads the jumps of a mouse wheel over a few frames. A plain value that is told
// the time that has passed; it returns whole pixels, and in the end exactly as many as were added.

#include <QtGlobal>
#include <cmath>

namespace vell {

class SmoothScroll {
  public:
    /// Adds a distance to what is still to be scrolled; one in the other direction replaces it.
    void add(double pixels) {
        if (pixels * remaining_ < 0) remaining_ = 0;
        remaining_ += pixels;
    }
    void stop() { remaining_ = 0; }
    [[nodiscard]] bool isMoving() const { return std::abs(remaining_) >= 1; }

    /// The pixels to scroll after this many milliseconds, a multiple of `grain` until the end.
    [[nodiscard]] qint64 step(double milliseconds, int grain = 1) {
        constexpr double timeConstant = 45;
        double part = remaining_ * (1 - std::exp(-milliseconds / timeConstant));
        // The last pixels come a grain a frame instead of ever more slowly.
        if (std::abs(part) < grain)
            part = std::copysign(std::min<double>(grain, std::abs(remaining_)), part);
        auto whole = static_cast<qint64>(part);
        if (std::abs(whole) > grain) whole -= whole % grain;
        remaining_ -= static_cast<double>(whole);
        return whole;
    }

  private:
    double remaining_ = 0;
};

}  // namespace vell
