// SPDX-License-Identifier: MIT
#include "toolkit/text_search.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <QTextBoundaryFinder>
#include <algorithm>
#include <array>
#include <memory>

namespace vell {
namespace {

bool isMark(UChar32 c) {
    return (U_GET_GC_MASK(c) & U_GC_MN_MASK) != 0;
}

/// Appends the character decomposed, without accents and, unless it matters, in one case; nothing
/// for an accent by itself.
void fold(UChar32 character, bool matchCase, icu::UnicodeString& decomposed, QString& out) {
    static const icu::Normalizer2* const normalizer = [] {
        UErrorCode status = U_ZERO_ERROR;
        return icu::Normalizer2::getNFKDInstance(status);
    }();
    if (!normalizer || !normalizer->getDecomposition(character, decomposed))
        decomposed = icu::UnicodeString(character);
    if (!matchCase) decomposed.foldCase();
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 part = decomposed.char32At(i);
        if (isMark(part)) continue;
        const char32_t unit = static_cast<char32_t>(part);
        out.append(QString::fromUcs4(&unit, 1));
    }
}

/// What each unit becomes where that is one unit, too.
class FoldTable {
  public:
    static constexpr char16_t notOne = 0xFFFF;  // no character

    explicit FoldTable(bool matchCase) {
        icu::UnicodeString decomposed;
        QString folded;
        for (size_t unit = 0; unit < units_.size(); ++unit) {
            folded.clear();
            if (!QChar::isSurrogate(static_cast<char32_t>(unit)))
                fold(static_cast<UChar32>(unit), matchCase, decomposed, folded);
            units_[unit] = folded.size() == 1 ? folded[0].unicode() : notOne;
        }
    }
    [[nodiscard]] char16_t operator[](char16_t unit) const { return units_[unit]; }

    static const FoldTable& get(bool matchCase) {
        static const std::unique_ptr<FoldTable> any = std::make_unique<FoldTable>(false);
        if (!matchCase) return *any;
        static const std::unique_ptr<FoldTable> exact = std::make_unique<FoldTable>(true);
        return *exact;
    }

  private:
    std::array<char16_t, 0x10000> units_;
};

// The most characters remembered.
constexpr qsizetype mostExpansions = 1 << 14;

// How much around a place decides whether a word ends there.
constexpr qsizetype wordReach = 64;

bool isApostrophe(char16_t unit) {
    return unit == u'\'' || unit == u'\u2019';
}

bool isAsciiWord(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'a' && unit <= u'z') || unit == u'_';
}

bool isWordEdge(QStringView text, qsizetype at) {
    if (at <= 0 || at >= text.size()) return true;
    const char16_t before = text[at - 1].unicode();
    const char16_t after = text[at].unicode();
    const bool isContext =
        isApostrophe(before) || isApostrophe(after) || (before >= 0x80 && after >= 0x80) ||
        (before >= 0x80 && isAsciiWord(after)) || (after >= 0x80 && isAsciiWord(before));
    if (!isContext) return !isAsciiWord(before) || !isAsciiWord(after);
    const qsizetype start = std::max<qsizetype>(at - wordReach, 0);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word,
                               text.sliced(start, std::min(at + wordReach, text.size()) - start));
    finder.setPosition(at - start);
    return finder.isAtBoundary();
}

}  // namespace

bool isWholeWord(QStringView text, const TextMatch& match) {
    return isWordEdge(text, match.position) && isWordEdge(text, match.position + match.length);
}

TextSearch::TextSearch(const QString& needle, SearchOptions options) : options_(options) {
    foldByCharacter(needle);
    needle_ = folded_;
}

/// Whether each unit has become one.
bool TextSearch::fold(QStringView text) {
    const FoldTable& table = FoldTable::get(options_.matchCase);
    folded_.resize(text.size());
    char16_t* out = reinterpret_cast<char16_t*>(folded_.data());
    bool isOneToOne = true;
    for (const QChar unit : text) {
        *out = table[unit.unicode()];
        isOneToOne &= *out++ != FoldTable::notOne;
    }
    return isOneToOne;
}

void TextSearch::foldByCharacter(QStringView text) {
    folded_.clear();
    origins_.clear();
    const FoldTable& table = FoldTable::get(options_.matchCase);
    icu::UnicodeString decomposed;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype start = i;
        UChar32 character = text[i++].unicode();
        if (const char16_t one = table[text[start].unicode()]; one != FoldTable::notOne) {
            folded_.append(QChar(one));
            origins_.push_back(start);
            continue;
        }
        if (QChar::isHighSurrogate(static_cast<char32_t>(character)) && i < text.size() &&
            text[i].isLowSurrogate())
            character = static_cast<UChar32>(QChar::surrogateToUcs4(text[start], text[i++]));
        if (expansions_.size() >= mostExpansions) expansions_.clear();
        QString& known = expansions_[character];
        if (known.isNull()) {
            known = QLatin1StringView("");
            vell::fold(character, options_.matchCase, decomposed, known);
        }
        folded_.append(known);
        origins_.resize(static_cast<size_t>(folded_.size()), start);
    }
    origins_.push_back(text.size());
}

void TextSearch::find(QStringView text, std::vector<TextMatch>& matches) {
    if (isEmpty() || text.isEmpty()) return;
    if (!fold(text)) {
        foldByCharacter(text);
        findFolded(text, matches);
        return;
    }
    for (qsizetype at = folded_.indexOf(needle_); at >= 0;
         at = folded_.indexOf(needle_, at + needle_.size())) {
        const TextMatch match{at, needle_.size()};
        if (!options_.wholeWords || isWholeWord(text, match)) matches.push_back(match);
    }
}

void TextSearch::findFolded(QStringView text, std::vector<TextMatch>& matches) const {
    qsizetype end = 0;  // of the latest match
    for (qsizetype at = folded_.indexOf(needle_); at >= 0;
         at = folded_.indexOf(needle_, at + needle_.size())) {
        const auto first = origins_.begin() + at;
        // Accents after the last letter belong to it, and of an expanded character ("ﬁ") the whole.
        auto last = first + needle_.size();
        while (*last == *(last - 1))
            ++last;
        const TextMatch match{*first, *last - *first};
        if (match.position < end || (options_.wholeWords && !isWholeWord(text, match))) continue;
        matches.push_back(match);
        end = match.position + match.length;
    }
}

void appendFolded(char32_t character, QString& folded) {
    icu::UnicodeString decomposed;
    fold(static_cast<UChar32>(character), false, decomposed, folded);
}

}  // namespace vell
