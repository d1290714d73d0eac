#pragma once
// SPDX-License-Identifier: MIT
//
// What an independent CommonMark reader finds in a text: its blocks, one after the other.

#include <QString>
#include <QStringList>
#include <vector>

namespace vell::test {

struct Block {
    enum class Kind {
        senderHeading,  ///< a paragraph that is one emphasis and ends in ":", given without it
        heading,
        system,  ///< a level-two heading that is one emphasis
        quote,
        paragraph,
        rule,
        other,  ///< what no chat log may hold: lists, code, HTML, headings out of texts …
    };
    Kind kind = Kind::other;
    /// All words; a hard line break is a line feed.
    QString text;
    /// Where its links and pictures lead.
    QStringList destinations;

    friend bool operator==(const Block&, const Block&) = default;
};

/// For failure messages.
void PrintTo(const Block& block, std::ostream* out);

/// Whether the reader (the program cmark) is installed.
[[nodiscard]] bool hasMarkdownReader();
/// Reads many texts in one go. Characters that XML can't carry come back as U+FFFD.
[[nodiscard]] std::vector<std::vector<Block>> readMarkdown(const QStringList& texts);

}  // namespace vell::test
