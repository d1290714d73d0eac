// SPDX-License-Identifier: MIT
#include "toolkit/text_tokens.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include "toolkit/text_search.h"

namespace vell {
namespace {

bool hasProperty(UChar32 character, UProperty property) {
    return u_hasBinaryProperty(character, property);
}

bool isEmoji(UChar32 character) {
    return hasProperty(character, UCHAR_EXTENDED_PICTOGRAPHIC) ||
           hasProperty(character, UCHAR_EMOJI_MODIFIER) ||
           hasProperty(character, UCHAR_REGIONAL_INDICATOR);
}

/// Of a script whose words aren't separated by blanks.
bool isUnspaced(UChar32 character) {
    UErrorCode status = U_ZERO_ERROR;
    switch (uscript_getScript(character, &status)) {
        case USCRIPT_HAN:
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
        case USCRIPT_THAI:
        case USCRIPT_LAO:
        case USCRIPT_KHMER:
        case USCRIPT_MYANMAR:
            return true;
        default:
            return false;
    }
}

bool isPunctuation(UChar32 character) {
    return (U_GET_GC_MASK(character) & (U_GC_P_MASK | U_GC_Z_MASK | U_GC_SM_MASK | U_GC_SC_MASK |
                                        U_GC_SK_MASK | U_GC_CC_MASK)) != 0;
}

}  // namespace

TextTokenizer::Role TextTokenizer::roleOf(char32_t character) {
    const auto c = static_cast<UChar32>(character);
    if (isEmoji(c)) return Role::single;
    if (hasProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT)) return Role::invisible;
    if (isUnspaced(c) && !isPunctuation(c)) return Role::single;
    switch (u_getIntPropertyValue(c, UCHAR_WORD_BREAK)) {
        case U_WB_KATAKANA:
            return Role::single;
        case U_WB_ALETTER:
        case U_WB_HEBREW_LETTER:
        case U_WB_NUMERIC:
        case U_WB_EXTEND:
            return Role::word;
        case U_WB_FORMAT:
            return Role::invisible;
        default:
            return Role::separator;
    }
}

const TextTokenizer::Unit& TextTokenizer::unitFor(char16_t unit) {
    auto& page = pages_[unit >> 8];
    if (!page) {
        page = std::make_unique<Page>();
        for (unsigned low = 0; low < page->size(); ++low) {
            const char32_t character = (static_cast<char32_t>(unit) & 0xff00) | low;
            if (QChar::isSurrogate(character)) continue;
            character_.clear();
            appendFolded(character, character_);
            if (character_.isEmpty())
                (*page)[low] = {0, Role::invisible};
            else if (character_.size() == 1)
                (*page)[low] = {character_[0].unicode(), roleOf(character_[0].unicode())};
        }
    }
    return (*page)[unit & 0xff];
}

void TextTokenizer::read(QStringView text) {
    folded_.resize(0);
    tokens_.clear();
    isInWord_ = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const Unit& unit = unitFor(c.unicode());
        if (unit.role != Role::several) {
            add(unit.role, QStringView(&unit.folded, 1), i, 1);
        } else if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            addFolded(QChar::surrogateToUcs4(c, text[i + 1]), i, 2);
            ++i;
        } else if (!c.isSurrogate()) {
            addFolded(c.unicode(), i, 1);
        } else {
            isInWord_ = false;
        }
    }
}

void TextTokenizer::addFolded(char32_t character, qsizetype position, qsizetype length) {
    character_.clear();
    appendFolded(character, character_);
    if (character_.isEmpty()) return add(Role::invisible, {}, position, length);
    for (qsizetype i = 0; i < character_.size(); ++i) {
        const bool isPair = character_[i].isHighSurrogate() && i + 1 < character_.size();
        const char32_t part = isPair ? QChar::surrogateToUcs4(character_[i], character_[i + 1])
                                     : char32_t(character_[i].unicode());
        add(roleOf(part), QStringView(character_).sliced(i, isPair ? 2 : 1), position, length);
        if (isPair) ++i;
    }
}

void TextTokenizer::add(Role role, QStringView folded, qsizetype position, qsizetype length) {
    const bool goesOn = role == Role::word && isInWord_;
    if (role == Role::invisible) {
        // An accent belongs to the letter in front of it.
        if (!tokens_.empty() && tokens_.back().position + tokens_.back().length == position)
            tokens_.back().length += length;
        return;
    }
    isInWord_ = role == Role::word;
    if (role == Role::separator) return;
    if (!goesOn) {
        if (!tokens_.empty()) folded_ += u' ';
        tokens_.push_back({position, 0, folded_.size(), 0});
    }
    TextToken& token = tokens_.back();
    token.length = position + length - token.position;
    if (token.size + folded.size() > longestToken) return;
    folded_ += folded;
    token.size += folded.size();
}

}  // namespace vell
