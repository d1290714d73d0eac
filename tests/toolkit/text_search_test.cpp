// SPDX-License-Identifier: MIT
#include "toolkit/text_search.h"

#include <gtest/gtest.h>

#include "toolkit/pattern_search.h"

namespace {

using namespace Qt::StringLiterals;
using vell::PatternSearch;
using vell::SearchOptions;
using vell::TextSearch;
using Match = vell::TextMatch;

struct Case {
    const char* what;
    QStringView needle;
    QStringView text;
    std::vector<Match> matches;
};

std::vector<Match> found(TextSearch search, QStringView text) {
    std::vector<Match> matches;
    search.find(text, matches);
    return matches;
}

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
        EXPECT_EQ(found(TextSearch(c.needle.toString()), c.text), c.matches) << c.what;
}

TEST(TextSearch, CaseAndWholeWordsCountOnDemand) {
    constexpr SearchOptions exact{.matchCase = true}, words{.wholeWords = true};
    const struct {
        const char* what;
        QStringView needle;
        SearchOptions options;
        QStringView text;
        std::vector<Match> matches;
    } cases[] = {
        {"case matters, accents don't", u"Cafe", exact, u"cafe CAFÉ Café", {{10, 4}}},
        {"a part of a word",
         u"cat",
         words,
         u"cat catalogue bobcat cat_1 a cat.",
         {{0, 3}, {29, 3}}},
        {"an apostrophe inside", u"don", words, u"don't, 'don'", {{8, 3}}},
        {"a typographic one", u"don", words, u"don\u2019t don", {{6, 3}}},
        {"a missing blank", u"later", words, u"ok.later,bye", {{3, 5}}},
        {"letters with accents", u"ber", words, u"über ber\u0301 ber", {{5, 4}, {10, 3}}},
        {"emoji are no letters", u"ok", words, u"👍ok👍 okay", {{2, 2}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(found(TextSearch(c.needle.toString(), c.options), c.text), c.matches) << c.what;
}

TEST(PatternSearch, FindsOrSaysWhyNot) {
    const std::atomic<bool> isCancelled = false;
    const auto matches = [&](QStringView pattern, SearchOptions options, QStringView text) {
        PatternSearch search(pattern.toString(), options, isCancelled);
        EXPECT_EQ(search.problem(), QString());
        std::vector<Match> result;
        EXPECT_TRUE(search.find(text, result));
        return result;
    };
    EXPECT_EQ(matches(u"c.t", {}, u"Cat cut ct"), (std::vector<Match>{{0, 3}, {4, 3}}));
    EXPECT_EQ(matches(u"c.t", {.matchCase = true}, u"Cat cut"), (std::vector<Match>{{4, 3}}));
    EXPECT_EQ(matches(u"[a-z]ut", {.wholeWords = true}, u"cut cute"), (std::vector<Match>{{0, 3}}));
    EXPECT_EQ(matches(u"^b*$", {}, u"a\nbb\n\nb"), (std::vector<Match>{{2, 2}, {6, 1}})) << "lines";
    for (const QString& pattern :
         {u"a)b"_s, u"(a"_s, u"[a"_s, u"*"_s, u"a{2"_s, u"a{3,1}"_s, u"\\y"_s, u"(?<=a*)b"_s,
          u"[b-a]"_s, u"\\p{Nothing}"_s, u"(?z)"_s}) {
        const PatternSearch search(pattern, {}, isCancelled);
        EXPECT_FALSE(search.problem().isEmpty()) << pattern.toStdString();
    }
    EXPECT_EQ(PatternSearch(u"ab[c"_s, {}, isCancelled).problem(),
              u"“]” is missing (character 4)"_s);
}

TEST(PatternSearch, NoPatternHangs) {
    std::atomic<bool> isCancelled = false;
    const QString text = QString(20'000, u'a') + u'b';
    const QString deep = QString(30'000, u'(') + u'a' + QString(30'000, u')');
    for (const QString& pattern :
         {u"(a+)+$"_s, u"(a|aa)+$"_s, u"(a*)*c"_s, u"(.*)(.*)(.*)(.*)\\1c"_s, deep,
          u"((((a{0,99}){0,99}){0,99}){0,99}){0,99}c"_s, u"(?=(a+))*\\1c"_s}) {
        std::vector<Match> matches;
        PatternSearch search(pattern, {}, isCancelled);
        EXPECT_TRUE(!search.problem().isEmpty() || !search.find(text, matches) || matches.empty())
            << pattern.left(40).toStdString();
    }
    isCancelled = true;
    std::vector<Match> matches;
    EXPECT_FALSE(PatternSearch(u"(a+)+$"_s, {}, isCancelled).find(text, matches));
}

}  // namespace
