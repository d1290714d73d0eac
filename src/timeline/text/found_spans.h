#pragma once
// SPDX-License-Identifier: MIT
//
// FoundSpans: the matches of a search in the order of the chat. A search that begins in the middle
// finds those before it last; they are kept apart, so that nothing moves when more are added.

#include <algorithm>
#include <utility>
#include <vector>

#include "timeline/text/text_range.h"

namespace vell {

class FoundSpans {
  public:
    FoundSpans() = default;
    /// Sorted spans.
    explicit FoundSpans(std::vector<TextSpan> spans) : later_(std::move(spans)) {}

    [[nodiscard]] qsizetype size() const { return std::ssize(earlier_) + std::ssize(later_); }
    [[nodiscard]] bool isEmpty() const { return size() == 0; }
    [[nodiscard]] const TextSpan& operator[](qsizetype index) const {
        const qsizetype first = std::ssize(earlier_);
        return index < first ? earlier_[static_cast<size_t>(index)]
                             : later_[static_cast<size_t>(index - first)];
    }

    /// Adds spans that follow those of their part: before where the search began, or after it.
    /// Returns the index of the first.
    qsizetype append(const std::vector<TextSpan>& spans, bool isBeforeStart) {
        std::vector<TextSpan>& part = isBeforeStart ? earlier_ : later_;
        const qsizetype index = isBeforeStart ? std::ssize(earlier_) : size();
        part.insert(part.end(), spans.begin(), spans.end());
        return index;
    }

    /// The index of the first span that begins at a position or after it; size() without one.
    [[nodiscard]] qsizetype firstAt(const TextPosition& position) const {
        return first([&](const TextSpan& span) { return span.from >= position; });
    }
    /// The index of the first span that ends after a position; size() without one.
    [[nodiscard]] qsizetype firstEndingAfter(const TextPosition& position) const {
        return first([&](const TextSpan& span) { return span.to > position; });
    }

  private:
    template <class Condition>
    [[nodiscard]] qsizetype first(Condition isReached) const {
        const auto isBefore = [&](const TextSpan& span) { return !isReached(span); };
        const auto found = std::partition_point(earlier_.begin(), earlier_.end(), isBefore);
        if (found != earlier_.end()) return found - earlier_.begin();
        return std::ssize(earlier_) +
               (std::partition_point(later_.begin(), later_.end(), isBefore) - later_.begin());
    }

    std::vector<TextSpan> earlier_;
    std::vector<TextSpan> later_;
};

}  // namespace vell
