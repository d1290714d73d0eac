#pragma once
// SPDX-License-Identifier: MIT
//
// HeightTree: the heights of many things that stand below each other, in device pixels, with their
// running sums in 64 bits. A million of them cost four bytes each and a little; changing one,
// asking where one starts and finding the one at a place take logarithmic time.

#include <cstdint>
#include <vector>

#include <QtGlobal>

namespace vell {

class HeightTree {
  public:
    HeightTree() = default;

    /// Replaces everything; `heightOf(index)` returns each height.
    template <class HeightOf>
    void assign(qsizetype count, HeightOf heightOf) {
        heights_.resize(static_cast<size_t>(count));
        for (qsizetype i = 0; i < count; ++i)
            heights_[static_cast<size_t>(i)] = heightOf(i);
        rebuild();
    }

    [[nodiscard]] qsizetype count() const { return static_cast<qsizetype>(heights_.size()); }
    [[nodiscard]] int height(qsizetype index) const { return heights_[static_cast<size_t>(index)]; }
    /// Never negative.
    void setHeight(qsizetype index, int height);

    /// The sum of the heights before `index`, which may be count().
    [[nodiscard]] qint64 top(qsizetype index) const;
    [[nodiscard]] qint64 total() const { return total_; }
    /// The last one that starts at or above `y` and has a height; the first or the last one when
    /// `y` lies outside. -1 when there are none.
    [[nodiscard]] qsizetype indexAt(qint64 y) const;

  private:
    static constexpr size_t chunkSize = 64;

    void rebuild();

    std::vector<int32_t> heights_;
    std::vector<qint64> chunks_;  // a Fenwick tree over the sums of chunkSize heights, from 1
    qint64 total_ = 0;
};

}  // namespace vell
