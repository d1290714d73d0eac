#pragma once
// SPDX-License-Identifier: MIT
//
// RowEstimates: what a row's height probably is, from one byte an event. The byte encodes the kind
// of row and roughly how long its text is; both lie in the event itself, so that a million rows are
// sorted into these classes in the time it takes to walk over them. One table then serves a width.

#include <array>
#include <cstdint>
#include <vector>

#include "timeline/rows/row_context.h"
#include "transcript/chat_log.h"

namespace vell {

class RowEstimates {
  public:
    explicit RowEstimates(const TesselChatLog& chatlog);

    /// Prepares the heights for rows of this many device pixels.
    void prepare(const RowContext& context, int rowWidth);
    /// In device pixels, without spacing; 0 for a row that shows nothing.
    [[nodiscard]] int height(qsizetype index) const {
        return heights_[classes_[static_cast<size_t>(index)]];
    }

    /// Whether the row is the caption of a sender.
    [[nodiscard]] bool isCaption(qsizetype index) const;
    /// Whether the row shows nothing; also before prepare().
    [[nodiscard]] bool isEmpty(qsizetype index) const;

  private:
    std::vector<uint8_t> classes_;
    std::array<int, 256> heights_{};
};

}  // namespace vell
