// SPDX-License-Identifier: MIT
//
// Whom conversations were held with, who is one person, and what is counted of them.
#include <gtest/gtest.h>

#include "library/fixture.h"
#include "library/library_statistics.h"
#include "library/query_terms.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::Fixture;

constexpr double day = 86400;

/// What ann's library shows.
class People : public testing::Test {
  protected:
    const Fixture fixture;
    LibraryStore store{fixture.database};
    PersonAliases aliases;
    ContactsStore::Table contacts;

    /// Ann's chat with others, who take turns with her, a message a minute.
    void chat(const QString& name, double begin, const QStringList& others, int messages) const {
        writers::Transcript chat{.service = u"AIM"_s, .people = {{u"ann"_s}}};
        for (const QString& other : others) {
            chat.participants.push_back(chat.people.size());
            chat.people.push_back({other});
        }
        for (int i = 0; i < messages; ++i) {
            chat.messages.push_back({.sender = static_cast<size_t>(i) % chat.people.size(),
                                     .date = begin + 60 * i,
                                     .body = {writers::words(u"Text %1\n of "_s.arg(i) + name)}});
        }
        fixture.write(name, writers::keyedTranscript(chat));
    }
    [[nodiscard]] LibraryPeople people() {
        fixture.update(store);
        return {LibraryContents::read(store, {fixture.chats}), aliases, contacts};
    }
    /// "bob 4, ben+bob 3": the partners and how much was written with them.
    [[nodiscard]] std::string shown() {
        QStringList partners;
        for (const LibraryPartner& partner : people().partners)
            partners.append(partner.name + u' ' + QString::number(partner.messages));
        return partners.join(u"; "_s).toStdString();
    }
};

PersonAliases::Addresses addresses(const QStringList& accounts) {
    PersonAliases::Addresses result;
    for (const QString& account : accounts)
        result.push_back({TesselServiceID::aim, account});
    return result;
}

TEST_F(People, ConversationsAreByWhomTheyAreWith) {
    writers::Transcript silent{.service = u"AIM"_s, .people = {{u"ann"_s}, {u"kim"_s}}};
    silent.participants = {1};
    silent.messages.push_back({.sender = 0, .date = 9 * day, .body = {}});
    fixture.write(u"0.ichat"_s, writers::keyedTranscript(silent));
    chat(u"1.ichat"_s, 0, {u"bob"_s}, 4);
    chat(u"2.ichat"_s, 3 * day, {u"bob"_s, u"ben"_s}, 3);
    chat(u"3.ichat"_s, 5 * day, {u"bob"_s}, 2);
    chat(u"4.ichat"_s, 5 * day - 1200, {u"eve"_s}, 2);
    chat(u"5.ichat"_s, 5 * day - 1800, {u"eve"_s}, 40);  // the first to begin is the last to end
    QFile::copy(fixture.path(u"3.ichat"_s), fixture.path(u"copy of 3.ichat"_s));
    fixture.write(u"broken.ichat"_s, "nothing");
    EXPECT_EQ(shown(), "eve 42; bob 6; ben, bob 3; kim 0");
    const LibraryPeople all = people();
    ASSERT_EQ(all.contents.broken.size(), 1U);
    EXPECT_FALSE(all.contents.broken[0].reason.isEmpty());
    const auto& latest = all.contents.conversations.front();
    EXPECT_EQ(latest.path, fixture.path(u"3.ichat"_s).toUtf8());
    EXPECT_EQ(latest.copies.size(), 1U);
    EXPECT_EQ(latest.end.secondsSinceReferenceDate, 5 * day + 60);
    EXPECT_EQ(firstWords(store, latest.file), u"Text 0 of 3.ichat"_s);
    // A copy leads to the conversation that stands for it.
    const int copy = all.conversationAt(fixture.path(u"copy of 3.ichat"_s).toUtf8());
    EXPECT_EQ(copy, 0);
    EXPECT_EQ(all.partnerOf(copy), 1);
    EXPECT_EQ(all.pathsOf(1), (std::vector<QByteArray>{fixture.path(u"1.ichat"_s).toUtf8(),
                                                       fixture.path(u"3.ichat"_s).toUtf8()}));
    EXPECT_EQ(LibraryContents::read(store, {fixture.chats + "/other"}).conversations.size(), 0U)
        << "other folders are in the same database";
}

TEST_F(People, AddressesOfOnePersonAreJoined) {
    int number = 0;
    for (const char* who : {"bob", "bobby", "robert", "eve"}) {
        ++number;
        chat(u"%1.ichat"_s.arg(number), number * day, {QString::fromLatin1(who)}, number);
    }
    chat(u"group.ichat"_s, 0, {u"bob"_s, u"robert"_s}, 6);
    EXPECT_EQ(shown(), "eve 4; robert 3; bobby 2; bob 1; bob, robert 6");
    contacts = {{u"bob"_s, {u"1"_s, u"bob"_s, u"Bob Stone"_s, {}}},
                {u"bobby"_s, {u"1"_s, u"bobby"_s, u"Bob Stone"_s, {}}}};
    EXPECT_EQ(shown(), "eve 4; robert 3; Bob Stone 3; Bob Stone, robert 6");
    aliases.join(addresses({u"bob"_s}), addresses({u"robert"_s}));
    EXPECT_EQ(shown(), "eve 4; Bob Stone 12") << "a group of one person's addresses is no group";
    EXPECT_EQ(people().addressesOf({TesselServiceID::aim, u"robert"_s}).size(), 3U);
    aliases.join(addresses({u"eve"_s}), addresses({u"bob"_s, u"robert"_s}));
    EXPECT_EQ(shown(), "eve 16") << "the first one gives the name, the contact still joins";
    aliases.separate(addresses({u"bob"_s}));
    EXPECT_EQ(shown(), "eve 7; Bob Stone 2; Bob Stone 1; Bob Stone, eve 6");
    EXPECT_EQ(PersonAliases::fromLines(aliases.lines()), aliases);
    aliases.separate(addresses({u"eve"_s, u"robert"_s}));
    aliases.join(addresses({u"bobby"_s}), addresses({u"bob"_s}));
    EXPECT_EQ(shown(), "eve 4; robert 3; Bob Stone 3; Bob Stone, robert 6");
    aliases.separate(addresses({u"bob"_s}));
    aliases.join(addresses({u"bob"_s}), addresses({u"eve"_s}));
    EXPECT_EQ(shown(), "Bob Stone 7; robert 3; Bob Stone, robert 6") << "bobby is back, too";
    aliases = {};
    contacts = {};
    aliases.join(addresses({u"ann"_s}), addresses({u"bob"_s}));
    EXPECT_EQ(shown(), "eve 4; robert 9; bobby 2; ann 1") << "the owner is nobody's partner";
}

TEST_F(People, AliasesSurviveSettings) {
    PersonAliases odd;
    odd.join({{{u"a b"_s}, u"c:d e%20"_s}}, {{{}, u"ü\n"_s}});
    odd.separate({{{u"x"_s}, {}}});
    EXPECT_EQ(PersonAliases::fromLines(odd.lines()), odd);
    EXPECT_EQ(PersonAliases::fromLines({u"rubbish"_s, u"joined"_s, u"joined one"_s, u""_s}),
              PersonAliases());
}

TEST_F(People, SearchesFindPersonsByAllTheirNames) {
    chat(u"1.ichat"_s, 0, {u"bob"_s}, 2);
    chat(u"2.ichat"_s, day, {u"robert"_s}, 2);
    chat(u"3.ichat"_s, day, {u"eve"_s}, 2);
    contacts = {{u"bob"_s, {u"1"_s, u"bob"_s, u"Rob Stóne"_s, {}}}};
    aliases.join(addresses({u"bob"_s}), addresses({u"robert"_s}));
    const auto names = people().searchedNames();
    SearchScope scope;
    scope.folders = {fixture.chats};
    scope.nameOf = [&names](const TesselUserID& user) { return names.value(user); };
    for (const char* query : {"from:STONE", "from:bob", "from:robert"})
        EXPECT_EQ(LibrarySearch(store, scope).count(Query::parse(QString::fromLatin1(query))), 2)
            << query;
}

TEST_F(People, StatisticsCountEachMessageOnce) {
    const double newYear = 365 * day;                  // 2002
    chat(u"1.ichat"_s, newYear - 120, {u"bob"_s}, 4);  // two messages in each year
    chat(u"2.ichat"_s, newYear + 2 * 365 * day + 7 * 3600, {u"eve"_s}, 3);
    chat(u"3.ichat"_s, newYear + 2 * 365 * day, {u"bob"_s}, 2);
    QFile::copy(fixture.path(u"2.ichat"_s), fixture.path(u"4.ichat"_s));
    chat(u"5.ichat"_s, newYear + 2 * 365 * day + 3600, {u"bob"_s, u"eve"_s}, 6);
    aliases.join(addresses({u"bob"_s}), addresses({u"eve"_s}));
    const foundation::Calendar utc(QTimeZone::utc());
    const LibraryPeople joined = people();
    const auto all = LibraryStatistics::read(store, joined, -1, utc);
    EXPECT_EQ(all.messages, 15);
    EXPECT_EQ(all.years, (std::map<int, qint64>{{2001, 2}, {2002, 2}, {2003, 0}, {2004, 11}}));
    EXPECT_EQ(all.hours[23], 2);
    EXPECT_EQ(all.hours[7], 3);
    ASSERT_EQ(all.writers.size(), 2U);
    EXPECT_EQ(joined.nameOf(all.writers[0].person), u"bob"_s);
    EXPECT_EQ(all.writers[0].messages, 8) << "bob's and eve's";
    EXPECT_EQ(all.writers[1].messages, 7);
    EXPECT_EQ(all.span->begin.secondsSinceReferenceDate, newYear - 120);
    EXPECT_EQ(all.silence->begin.secondsSinceReferenceDate, newYear + 60);
    EXPECT_EQ(all.silence->end.secondsSinceReferenceDate, newYear + 2 * 365 * day);
    aliases = {};
    const LibraryPeople apart = people();
    ASSERT_EQ(apart.partners[0].name, u"eve"_s);
    EXPECT_EQ(LibraryStatistics::read(store, apart, 0, utc).messages, 3);
    QStringList writers;
    for (const auto& writer : LibraryStatistics::read(store, apart, -1, utc).writers)
        writers.append(apart.nameOf(writer.person));
    EXPECT_EQ(writers, (QStringList{u"ann"_s, u"bob"_s, u"eve"_s}));
    EXPECT_FALSE(LibraryStatistics::read(store, LibraryPeople({}, {}, {}), -1, utc).span);
}

TEST(QueryTerms, AreReplacedWithoutTouchingWords) {
    struct Row {
        const char* fault;
        QString before;
        QString key;
        QStringList values;
        QString after;
    };
    const Row rows[] = {
        {"the last word is no prefix any more", u"din"_s, u"in"_s, {u"2008"_s}, u"in:2008 din"_s},
        {"the old value stays", u"a in:2007 b"_s, u"in"_s, {u"2008"_s}, u"in:2008 a b"_s},
        {"only one of two goes", u"from:a x from:b"_s, u"from"_s, {}, u"x "_s},
        {"a name falls apart", u"x"_s, u"from"_s, {u"Ann \"A\" Lee"_s}, u"from:\"Ann A Lee\" x"_s},
        {"a quoted name isn't found again", u"from:\"Ann Lee\" x"_s, u"from"_s, {}, u"x"_s},
        {"a phrase is taken for a filter", u"\"in:2007 b\""_s, u"in"_s, {}, u"\"in:2007 b\""_s},
        {"what follows a colon is a filter", u":in:2007 x"_s, u"in"_s, {}, u":in:2007 x"_s},
        {"the word's space goes", u"in:2007 word "_s, u"in"_s, {}, u"word "_s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(withTerms(row.before, row.key, row.values), row.after) << row.fault;
        EXPECT_EQ(termValues(row.after, row.key).size(), row.values.size()) << row.fault;
    }
}

}  // namespace
}  // namespace vell
