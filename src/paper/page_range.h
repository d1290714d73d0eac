#pragma once
// SPDX-License-Identifier: MIT
//
// Which pages of a chat are wanted, and how far they are.

#include <QtGlobal>
#include <functional>
#include <limits>

namespace vell {

struct PageRange {
    int first = 1;
    int last = std::numeric_limits<int>::max();
};

/// Called before each page with the events that are laid out, and all; false ends the work.
using PaperProgress = std::function<bool(qsizetype done, qsizetype all)>;

}  // namespace vell
