// SPDX-License-Identifier: MIT
#include "toolkit/text_search.h"

#include <gtest/gtest.h>

namespace {

using vell::TextSearch;
using Match = TextSearch::Match;

struct Case {
    const char* what;
    QStringView needle;
    QStringView text;
    std::vector<Match> matches;
};

TEST(TextSearch, FindsWhatAPersonMeant) {
    const Case cases[] = {
        {"nothing typed", u"", u"abc", {}},
        {"an accent alone", u"\u0301", u"cafe\u0301", {}},
        {"another case", u"HeLLo", u"well, hello hello", {{6, 5}, {12, 5}}},
        {"overlaps are not counted twice", u"aa", u"aaaaa", {{0, 2}, {2, 2}}},
        {"accent in the text, composed", u"cafe", u"Un Café!", {{3, 4}}},
        {"accent in the text, decomposed: it belongs to its letter",
         u"cafe",
         u"Cafe\u0301!",
         {{0, 5}}},
        {"accent typed, none in the text", u"café", u"CAFE", {{0, 4}}},
        {"sharp s is two letters", u"strasse", u"Straße", {{0, 6}}},
        {"half of a ligature takes it whole", u"f", u"\ufb01n", {{0, 1}}},
        {"letters outside the basic plane", u"x", u"a𝒳b", {{1, 2}}},
        {"an emoji", u"👍", u"ok 👍🏽", {{3, 2}}},
        {"other scripts", u"привет", u"ПРИВЕТ, мир", {{0, 6}}},
        {"a lone surrogate",
         u"b",
         u"\xd800"
         u"b",
         {{1, 1}}},
        {"a letter that plain text can't hold", u"ж", u"zzz", {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TextSearch(c.needle.toString()).matches(c.text), c.matches) << c.what;
}

}  // namespace
