#pragma once
// SPDX-License-Identifier: MIT
//
// TextTokenizer: divides texts into the tokens that a search over an index compares, folded as
// TextSearch folds them. A word is a run of letters and digits; punctuation always ends it, so that
// "end.Next" is two words. Where words aren't separated by blanks (Chinese, Japanese, Thai, Lao,
// Khmer, Burmese) each letter is a token, and a sequence of them is found as a phrase. So is an
// emoji. One thread at a time.
//
//     tokenizer.read(text);
//     for (const TextToken& token : tokenizer.tokens()) … tokenizer.folded(token) …

#include <QString>
#include <array>
#include <memory>
#include <vector>

namespace vell {

struct TextToken {
    qsizetype position = 0;  ///< in the text, in UTF-16 units
    qsizetype length = 0;
    qsizetype begin = 0;  ///< in the folded text
    qsizetype size = 0;
};

class TextTokenizer {
  public:
    /// Longer tokens are cut.
    static constexpr qsizetype longestToken = 256;

    void read(QStringView text);
    /// Those of the last text read, in its order.
    [[nodiscard]] const std::vector<TextToken>& tokens() const { return tokens_; }
    /// The tokens one after the other, a blank between them. They hold ASCII letters and digits,
    /// and whatever is beyond ASCII.
    [[nodiscard]] const QString& folded() const { return folded_; }
    [[nodiscard]] QStringView folded(const TextToken& token) const {
        return QStringView(folded_).sliced(token.begin, token.size);
    }

  private:
    enum class Role : quint8 { separator, word, single, invisible, several };
    /// What a unit becomes where that is one unit; other characters have the role `several`.
    struct Unit {
        char16_t folded = 0;
        Role role = Role::several;
    };
    using Page = std::array<Unit, 256>;

    std::array<std::unique_ptr<Page>, 256> pages_;
    QString folded_;
    std::vector<TextToken> tokens_;
    bool isInWord_ = false;
    QString character_;  // the folded one at hand

    [[nodiscard]] static Role roleOf(char32_t character);
    [[nodiscard]] const Unit& unitFor(char16_t unit);
    void addFolded(char32_t character, qsizetype position, qsizetype length);
    void add(Role role, QStringView folded, qsizetype position, qsizetype length);
};

}  // namespace vell
