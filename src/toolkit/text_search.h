#pragma once
// SPDX-License-Identifier: MIT
//
// TextSearch: finds what a person typed in running text, letter case and accents folded by ICU, so
// "cafe" finds "Café" whichever way the accent is encoded. Immutable once made; any thread.

#include <QString>
#include <vector>

namespace vell {

class TextSearch {
  public:
    /// A stretch of the searched text in UTF-16 units, on whole characters.
    struct Match {
        qsizetype position = 0;
        qsizetype length = 0;
        friend bool operator==(const Match&, const Match&) = default;
    };

    explicit TextSearch(const QString& needle);

    /// True when nothing was typed, or nothing that can be found; such a search has no matches.
    [[nodiscard]] bool isEmpty() const { return needle_.isEmpty(); }
    /// All matches in text order, none overlapping another.
    [[nodiscard]] std::vector<Match> matches(QStringView text) const;

  private:
    QString needle_;  // folded
    bool isAscii_ = true;
};

/// Appends what a search compares the character as: decomposed, without accents, in one case;
/// nothing for an accent by itself.
void appendFolded(char32_t character, QString& folded);

}  // namespace vell
