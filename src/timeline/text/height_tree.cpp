// SPDX-License-Identifier: MIT
#include "timeline/text/height_tree.h"

#include <algorithm>
#include <bit>

namespace vell {

void HeightTree::rebuild() {
    chunks_.assign((heights_.size() + chunkSize - 1) / chunkSize + 1, 0);
    total_ = 0;
    for (size_t chunk = 1; chunk < chunks_.size(); ++chunk) {
        const size_t from = (chunk - 1) * chunkSize;
        const size_t to = std::min(from + chunkSize, heights_.size());
        qint64 sum = 0;
        for (size_t i = from; i < to; ++i)
            sum += heights_[i];
        total_ += sum;
        chunks_[chunk] += sum;
        const size_t parent = chunk + (chunk & -chunk);
        if (parent < chunks_.size()) chunks_[parent] += chunks_[chunk];
    }
}

void HeightTree::setHeight(qsizetype index, int height) {
    int32_t& stored = heights_[static_cast<size_t>(index)];
    const qint64 change = qint64(height) - stored;
    if (change == 0) return;
    stored = height;
    total_ += change;
    for (size_t chunk = static_cast<size_t>(index) / chunkSize + 1; chunk < chunks_.size();
         chunk += chunk & -chunk) {
        chunks_[chunk] += change;
    }
}

qint64 HeightTree::top(qsizetype index) const {
    const size_t whole = static_cast<size_t>(index) / chunkSize;
    qint64 sum = 0;
    for (size_t chunk = whole; chunk > 0; chunk &= chunk - 1)
        sum += chunks_[chunk];
    for (size_t i = whole * chunkSize; i < static_cast<size_t>(index); ++i)
        sum += heights_[i];
    return sum;
}

qsizetype HeightTree::indexAt(qint64 y) const {
    if (total_ == 0) return count() - 1;
    y = std::clamp<qint64>(y, 0, total_ - 1);
    size_t chunk = 0;
    for (size_t step = std::bit_floor(chunks_.size() - 1); step > 0; step /= 2) {
        if (chunk + step < chunks_.size() && chunks_[chunk + step] <= y) {
            chunk += step;
            y -= chunks_[chunk];
        }
    }
    size_t index = chunk * chunkSize;
    while (index + 1 < heights_.size() && heights_[index] <= y)
        y -= heights_[index++];
    return static_cast<qsizetype>(index);
}

}  // namespace vell
