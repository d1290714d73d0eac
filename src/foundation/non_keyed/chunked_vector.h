#pragma once
// SPDX-License-Identifier: MIT
//
// ChunkedVector: a vector that only grows at its end and never moves what it holds. It allocates
// whole chunks, so it grows cheaply, wastes little and doesn't fragment the heap.

#include <QtGlobal>
#include <memory>
#include <utility>
#include <vector>

namespace foundation::non_keyed {

template <class T>
class ChunkedVector {
  public:
    ChunkedVector() = default;
    ChunkedVector(const ChunkedVector&) = delete;
    ChunkedVector& operator=(const ChunkedVector&) = delete;
    ~ChunkedVector() {
        for (size_t i = 0; i < size_; ++i)
            std::destroy_at(&(*this)[i]);
    }

    [[nodiscard]] size_t size() const { return size_; }
    [[nodiscard]] T& operator[](size_t i) { return slot(i)->value; }
    [[nodiscard]] const T& operator[](size_t i) const { return slot(i)->value; }
    template <class... Arguments>
    T& emplace_back(Arguments&&... arguments) {
        if (size_ == chunks_.size() * chunkSize)
            chunks_.push_back(std::make_unique_for_overwrite<Slot[]>(chunkSize));
        T* const added =
            std::construct_at(&slot(size_)->value, std::forward<Arguments>(arguments)...);
        ++size_;
        return *added;
    }

  private:
    static constexpr size_t chunkSize = 2048;
    union Slot {
        Slot() {}
        ~Slot() {}
        T value;
    };

    [[nodiscard]] Slot* slot(size_t i) const { return &chunks_[i / chunkSize][i % chunkSize]; }

    std::vector<std::unique_ptr<Slot[]>> chunks_;
    size_t size_ = 0;
};

}  // namespace foundation::non_keyed
