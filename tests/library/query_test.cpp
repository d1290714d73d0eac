// SPDX-License-Identifier: MIT
#include "library/query.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

namespace vell {
namespace {

using namespace Qt::StringLiterals;

TEST(Query, FindsWhatAPersonMeant) {
    struct Case {
        const char* what;
        QString query;
        QString text;
        int rank;  // -1: not found
    };
    const Case cases[] = {
        {"case and accents", u"CAFE naive"_s, u"Naïve in the Cafe\u0301"_s, 1},
        {"side by side", u"the cat"_s, u"See the CAT!"_s, 0},
        {"the last word goes on", u"the ca"_s, u"the cat"_s, 2},
        {"the others don't", u"th cat"_s, u"the cat"_s, -1},
        {"a blank ends the last one", u"ca "_s, u"cat"_s, -1},
        {"a phrase in order only", u"\"b a\""_s, u"a b"_s, -1},
        {"a phrase ends with a whole word", u"\"the ca\""_s, u"the cat"_s, -1},
        {"the same in typographic marks", u"“the ca”"_s, u"the cat"_s, -1},
        {"punctuation ends words", u"next"_s, u"the end.Next"_s, 0},
        {"and is none", u"don't"_s, u"I don\u2019t"_s, 0},
        {"a soft hyphen is nothing", u"cooperate"_s, u"co\u00adoperate"_s, 0},
        {"half of a ligature", u"fi"_s, u"\ufb01n"_s, 2},
        {"Chinese without blanks", u"電車"_s, u"今日は電車で行く"_s, 0},
        {"in this order", u"車電"_s, u"今日は電車で行く"_s, -1},
        {"narrow and wide kana", u"ｶﾒﾗ"_s, u"新しいカメラ"_s, 0},
        {"Thai inside a sentence", u"แมว"_s, u"ฉันมีแมวสองตัว"_s, 0},
        {"and what isn't there", u"หมา"_s, u"ฉันมีแมวสองตัว"_s, -1},
        {"Arabic", u"قطار"_s, u"في قطار الصباح"_s, 0},
        {"Persian joined without a blank", u"میخواهم"_s, u"می\u200cخواهم"_s, 0},
        {"emoji, whatever the skin", u"👍"_s, u"ok👍🏽"_s, 0},
        {"and another", u"👎"_s, u"ok👍🏽"_s, -1},
        {"an unknown key is a word", u"re:invent"_s, u"re: invent"_s, 0},
        {"a very long word, cut", u"a"_s.repeated(300), u"a"_s.repeated(400), 0},
    };
    TextTokenizer tokenizer;
    for (const Case& c : cases) {
        tokenizer.read(c.text);
        EXPECT_EQ(Query::parse(c.query).rank(tokenizer).value_or(-1), c.rank) << c.what;
    }
    tokenizer.read(u"Un Cafe\u0301, una café"_s);
    const auto marked = stretchesOf(Query::parse(u"cafe"_s), tokenizer);
    ASSERT_EQ(marked.size(), 2U);
    EXPECT_EQ(marked[0].position, 3);
    EXPECT_EQ(marked[0].length, 5) << "the accent belongs to its letter";
    tokenizer.read(u"電車電車"_s);
    EXPECT_EQ(stretchesOf(Query::parse(u"電車"_s), tokenizer).size(), 2U);
    EXPECT_EQ(stretchesOf(Query::parse(u"電車 車電"_s), tokenizer).size(), 1U) << "they overlap";
}

TEST(Query, ReadsFilters) {
    const Query query = Query::parse(u"from:\"Ann B\" with:ben has:link has:picture dinner"_s);
    EXPECT_EQ(query.from, QStringList{u"Ann B"_s});
    EXPECT_EQ(query.with, QStringList{u"ben"_s});
    EXPECT_EQ(query.has, ContentKinds::link | ContentKinds::picture);
    EXPECT_FALSE(query.accepts({}, ContentKinds::link)) << "both are wanted";
    EXPECT_TRUE(query.phrases.at(0).isPrefix);
    const auto days = [](const char* text) {
        const Query q = Query::parse(QString::fromLatin1(text));
        const auto day = [](double seconds) { return static_cast<int>((seconds + 43200) / 86400); };
        return std::pair(std::isfinite(q.begin) ? day(q.begin) : -1,
                         std::isfinite(q.end) ? day(q.end) : -1);
    };
    EXPECT_EQ(days("in:2001-02"), std::pair(31, 59));
    EXPECT_EQ(days("after:2001-01 before:2001-03-01"), std::pair(31, 59));
    EXPECT_EQ(days("after:2001 in:2002-01-05"), std::pair(369, 370));
    EXPECT_EQ(days("before:2001-02 before:2002 after:2001-01-04 after:2001-01-02"),
              std::pair(4, 31));
    qputenv("TZ", "Asia/Tokyo");
    tzset();
    EXPECT_EQ(Query::parse(u"in:2001-01-02"_s).begin, 86400 - 9 * 3600) << "local days";
    const Query day = Query::parse(u"in:2001-02-03"_s);
    EXPECT_TRUE(day.accepts({day.begin}, 0));
    EXPECT_FALSE(day.accepts({day.end}, 0));
    for (const char* bad : {"in:2001-13", "after:yesterday", "has:money"})
        EXPECT_THROW((void)Query::parse(QString::fromLatin1(bad)), QueryError) << bad;
    EXPECT_TRUE(Query::parse(u"!? \"\""_s).isEmpty());
}

}  // namespace
}  // namespace vell
