// SPDX-License-Identifier: MIT
#include "toolkit/text_search.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace vell {
namespace {

/// The text as it is compared, and for each of its units where in the original it came from.
struct Folded {
    QString text;
    std::vector<qsizetype> origins;  // one more entry than units: the end
};

bool isAscii(QStringView text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

char32_t lower(char32_t c) {
    return c >= U'A' && c <= U'Z' ? c + (U'a' - U'A') : c;
}

bool isMark(UChar32 c) {
    return (U_GET_GC_MASK(c) & U_GC_MN_MASK) != 0;
}

/// Appends the character decomposed, without accents, in one case; nothing for an accent by itself.
void fold(UChar32 character, icu::UnicodeString& decomposed, QString& out) {
    static const icu::Normalizer2* const normalizer = [] {
        UErrorCode status = U_ZERO_ERROR;
        return icu::Normalizer2::getNFKDInstance(status);
    }();
    if (character < 0x80) {
        out.append(QChar(static_cast<char16_t>(lower(static_cast<char32_t>(character)))));
        return;
    }
    if (!normalizer || !normalizer->getDecomposition(character, decomposed))
        decomposed = icu::UnicodeString(character);
    decomposed.foldCase();
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 part = decomposed.char32At(i);
        if (isMark(part)) continue;
        const char32_t unit = static_cast<char32_t>(part);
        out.append(QString::fromUcs4(&unit, 1));
    }
}

Folded folded(QStringView text) {
    Folded result;
    result.text.reserve(text.size());
    result.origins.reserve(static_cast<size_t>(text.size()) + 1);
    icu::UnicodeString decomposed;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype start = i;
        UChar32 character = text[i++].unicode();
        if (QChar::isHighSurrogate(static_cast<char32_t>(character)) && i < text.size() &&
            text[i].isLowSurrogate())
            character = static_cast<UChar32>(QChar::surrogateToUcs4(text[start], text[i++]));
        fold(character, decomposed, result.text);
        result.origins.resize(static_cast<size_t>(result.text.size()), start);
    }
    result.origins.push_back(text.size());
    return result;
}

}  // namespace

TextSearch::TextSearch(const QString& needle)
    : needle_(folded(needle).text), isAscii_(vell::isAscii(needle_)) {}

std::vector<TextSearch::Match> TextSearch::matches(QStringView text) const {
    std::vector<Match> result;
    if (isEmpty()) return result;
    if (vell::isAscii(text)) {
        // Nothing to fold but letters: most text, at memory speed.
        if (!isAscii_) return result;
        for (qsizetype at = text.indexOf(needle_, 0, Qt::CaseInsensitive); at >= 0;
             at = text.indexOf(needle_, at + needle_.size(), Qt::CaseInsensitive))
            result.push_back({at, needle_.size()});
        return result;
    }
    const Folded haystack = folded(text);
    for (qsizetype at = haystack.text.indexOf(needle_); at >= 0;
         at = haystack.text.indexOf(needle_, at + needle_.size())) {
        const auto origins = haystack.origins.begin();
        const qsizetype begin = origins[at];
        // Accents after the last letter belong to it, and of an expanded character ("ﬁ") the whole.
        auto last = origins + at + needle_.size();
        while (*last == *(last - 1))
            ++last;
        if (result.empty() || begin >= result.back().position + result.back().length)
            result.push_back({begin, *last - begin});
    }
    return result;
}

void appendFolded(char32_t character, QString& folded) {
    icu::UnicodeString decomposed;
    fold(static_cast<UChar32>(character), decomposed, folded);
}

}  // namespace vell
