#pragma once
// SPDX-License-Identifier: MIT
//
// TextRange: a stretch of the text that one row of a timeline shows.

#include <QtGlobal>

namespace vell {

struct TextRange {
    qsizetype row = 0;  ///< index into the log's events
    qsizetype start = 0;
    qsizetype length = 0;  ///< UTF-16 units, as start
    friend bool operator==(const TextRange&, const TextRange&) = default;
};

}  // namespace vell
