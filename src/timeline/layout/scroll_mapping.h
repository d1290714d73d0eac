#pragma once
// SPDX-License-Identifier: MIT
//
// ScrollMapping: places in a timeline, 64-bit device pixels, as values of a scroll bar, which are
// int. Up to 2^30 pixels one value is one pixel; beyond, several pixels share a value.

#include <QtGlobal>
#include <algorithm>

namespace vell {

struct ScrollMapping {
    static constexpr qint64 mostValues = qint64(1) << 30;

    qint64 content = 0;   ///< height of everything
    qint64 viewport = 0;  ///< height of what is seen

    [[nodiscard]] qint64 lastOffset() const { return std::max<qint64>(content - viewport, 0); }
    [[nodiscard]] qint64 pixelsPerValue() const { return (lastOffset() + mostValues) / mostValues; }
    [[nodiscard]] int maximum() const { return toValue(lastOffset()); }
    [[nodiscard]] int pageStep() const {
        return static_cast<int>(std::max<qint64>(viewport / pixelsPerValue(), 1));
    }
    [[nodiscard]] int toValue(qint64 offset) const {
        return static_cast<int>((offset + pixelsPerValue() - 1) / pixelsPerValue());
    }
    /// The last value is the last offset.
    [[nodiscard]] qint64 toOffset(int value) const {
        return std::min(value * pixelsPerValue(), lastOffset());
    }
};

}  // namespace vell
