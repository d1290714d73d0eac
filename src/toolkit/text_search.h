#pragma once
// SPDX-License-Identifier: MIT
//
// TextSearch: finds what a person typed in many texts. Accents are folded by ICU, so "cafe" finds
// "Café" whichever way the accent is encoded, and letter case unless it matters. One thread at a
// time.
//
//     TextSearch search(QStringLiteral("cafe"), {.wholeWords = true});
//     search.find(text, matches);

#include <QHash>
#include <QString>
#include <vector>

namespace vell {

/// A stretch of the searched text in UTF-16 units, on whole characters.
struct TextMatch {
    qsizetype position = 0;
    qsizetype length = 0;
    friend bool operator==(const TextMatch&, const TextMatch&) = default;
};

struct SearchOptions {
    bool matchCase = false;
    bool wholeWords = false;
    friend bool operator==(const SearchOptions&, const SearchOptions&) = default;
};

class TextSearch {
  public:
    explicit TextSearch(const QString& needle, SearchOptions options = {});

    /// True when nothing was typed, or nothing that can be found; such a search has no matches.
    [[nodiscard]] bool isEmpty() const { return needle_.isEmpty(); }
    /// Appends all matches in text order, none overlapping another.
    void find(QStringView text, std::vector<TextMatch>& matches);

  private:
    [[nodiscard]] bool fold(QStringView text);
    void foldByCharacter(QStringView text);
    void findFolded(QStringView text, std::vector<TextMatch>& matches) const;

    SearchOptions options_;
    QString needle_;                      // folded
    QHash<int32_t, QString> expansions_;  // of characters that don't become one unit
    // Of the text at hand, kept for their memory.
    QString folded_;
    std::vector<qsizetype> origins_;  // where each folded unit came from, and the end
};

/// Appends what a search compares the character as: decomposed, without accents, in one case;
/// nothing for an accent by itself.
void appendFolded(char32_t character, QString& folded);

/// Whether neither of a match's ends is inside a word.
[[nodiscard]] bool isWholeWord(QStringView text, const TextMatch& match);

}  // namespace vell
