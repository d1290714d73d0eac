// SPDX-License-Identifier: MIT
#include "toolkit/pattern_search.h"

#include <unicode/parseerr.h>
#include <unicode/uregex.h>

#include <QCoreApplication>
#include <algorithm>

namespace vell {
namespace {

// ICU counts in units of some ten thousand backtrackings, about half a millisecond.
constexpr qsizetype stepsForAnyText = 100;
constexpr qsizetype unitsPerStep = 500;
constexpr int32_t mostBacktracking = 8'000'000;  // bytes

struct Reason {
    UErrorCode status;
    const char* text;
};

constexpr Reason reasons[] = {
    {U_REGEX_BAD_ESCAPE_SEQUENCE,
     QT_TRANSLATE_NOOP("PatternSearch", "nothing is known by this letter after “\\”")},
    {U_REGEX_PROPERTY_SYNTAX, QT_TRANSLATE_NOOP("PatternSearch", "there is no such property")},
    {U_REGEX_MISMATCHED_PAREN, QT_TRANSLATE_NOOP("PatternSearch", "a parenthesis is missing")},
    {U_REGEX_NUMBER_TOO_BIG, QT_TRANSLATE_NOOP("PatternSearch", "a number is too large")},
    {U_REGEX_BAD_INTERVAL, QT_TRANSLATE_NOOP("PatternSearch", "“{” needs numbers and “}”")},
    {U_REGEX_MAX_LT_MIN,
     QT_TRANSLATE_NOOP("PatternSearch", "in “{ }” the first number is the larger one")},
    {U_REGEX_INVALID_BACK_REF, QT_TRANSLATE_NOOP("PatternSearch", "there is no such group")},
    {U_REGEX_INVALID_CAPTURE_GROUP_NAME,
     QT_TRANSLATE_NOOP("PatternSearch", "this can’t name a group")},
    {U_REGEX_INVALID_FLAG, QT_TRANSLATE_NOOP("PatternSearch", "there is no such flag")},
    {U_REGEX_LOOK_BEHIND_LIMIT,
     QT_TRANSLATE_NOOP("PatternSearch", "what is looked for behind may have any length")},
    {U_REGEX_MISSING_CLOSE_BRACKET, QT_TRANSLATE_NOOP("PatternSearch", "“]” is missing")},
    {U_REGEX_INVALID_RANGE,
     QT_TRANSLATE_NOOP("PatternSearch", "a range in “[ ]” ends before it begins")},
    {U_REGEX_PATTERN_TOO_BIG, QT_TRANSLATE_NOOP("PatternSearch", "it is too long")},
    {U_REGEX_STACK_OVERFLOW, QT_TRANSLATE_NOOP("PatternSearch", "it is too deeply nested")},
};

QString reasonFor(UErrorCode status, const UParseError& place) {
    const auto known = std::find_if(std::begin(reasons), std::end(reasons),
                                    [status](const Reason& r) { return r.status == status; });
    QString reason = QCoreApplication::translate(
        "PatternSearch", known == std::end(reasons)
                             ? QT_TRANSLATE_NOOP("PatternSearch", "this can’t stand here")
                             : known->text);
    if (place.offset <= 0) return reason;
    //: "“]” is missing (character 7)"
    return QCoreApplication::translate("PatternSearch", "%1 (character %2)")
        .arg(reason)
        .arg(place.offset);
}

}  // namespace

PatternSearch::PatternSearch(const QString& pattern, SearchOptions options,
                             const std::atomic<bool>& isCancelled)
    : options_(options), isCancelled_(isCancelled) {
    if (pattern.isEmpty()) return;
    UErrorCode status = U_ZERO_ERROR;
    UParseError place{};
    const uint32_t flags = UREGEX_MULTILINE | UREGEX_ERROR_ON_UNKNOWN_ESCAPES |
                           (options.matchCase ? 0 : UREGEX_CASE_INSENSITIVE);
    expression_ = uregex_open(reinterpret_cast<const UChar*>(pattern.utf16()),
                              static_cast<int32_t>(pattern.size()), flags, &place, &status);
    uregex_setStackLimit(expression_, mostBacktracking, &status);
    uregex_setMatchCallback(expression_, goesOn, this, &status);
    if (U_SUCCESS(status)) return;
    problem_ = reasonFor(status, place);
    uregex_close(expression_);
    expression_ = nullptr;
}

PatternSearch::~PatternSearch() {
    uregex_close(expression_);
}

signed char PatternSearch::goesOn(const void* search, int steps) {
    const auto* self = static_cast<const PatternSearch*>(search);
    return steps <= self->mostSteps_ && !self->isCancelled_;
}

bool PatternSearch::find(QStringView text, std::vector<TextMatch>& matches) {
    if (!expression_ || text.isEmpty()) return true;
    mostSteps_ = stepsForAnyText + text.size() / unitsPerStep;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(expression_, reinterpret_cast<const UChar*>(text.utf16()),
                   static_cast<int32_t>(text.size()), &status);
    while (uregex_findNext(expression_, &status) && U_SUCCESS(status)) {
        const qsizetype start = uregex_start(expression_, 0, &status);
        const TextMatch match{start, uregex_end(expression_, 0, &status) - start};
        if (match.length > 0 && (!options_.wholeWords || isWholeWord(text, match)))
            matches.push_back(match);
    }
    return U_SUCCESS(status);
}

}  // namespace vell
