#pragma once
// SPDX-License-Identifier: MIT
//
// A message's text cut into the pieces that are laid out one by one: its paragraphs, and parts of
// those that are longer than a layout should get.

#include <QStringView>
#include <Qt>
#include <vector>

namespace vell {

struct TextBlock {
    qsizetype start = 0;
    int length = 0;            ///< UTF-16 units, without the line break that ends the paragraph
    bool rightToLeft = false;  ///< by the first strong letter of the paragraph
};

/// No block is longer, in UTF-16 units.
inline constexpr int longestBlock = 4096;

/// At least one block. Every kind of line break ends a paragraph; a long paragraph is cut behind a
/// blank, or between two characters as readers see them. Paragraphs without a strong letter run in
/// the direction given.
[[nodiscard]] std::vector<TextBlock> splitIntoBlocks(QStringView text,
                                                     Qt::LayoutDirection direction);

}  // namespace vell
