#pragma once
// SPDX-License-Identifier: MIT
//
// The outline of a PDF: years, in them months, in them days.

#include <QString>
#include <vector>

#include "paper/pdf_file.h"

namespace vell {

struct OutlineEntry {
    int level;  ///< 0 is the highest; at most one more than that of the entry before
    QString title;
    int page;   ///< the page's object
    qreal top;  ///< on it, in points from its lower edge
};

/// Writes the outline; returns its object, or 0 without entries. Only the highest level is
/// unfolded.
[[nodiscard]] int writeOutline(PdfFile& file, const std::vector<OutlineEntry>& entries);

}  // namespace vell
