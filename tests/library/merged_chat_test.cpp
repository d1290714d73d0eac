// SPDX-License-Identifier: MIT
#include "library/merged_chat.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <limits>
#include <variant>

#include "library/conversation.h"

namespace vell {
namespace {

using Log = TesselChatLog;

const foundation::Calendar utc = *foundation::Calendar::named("UTC");
const double undated = foundation::Date::distantPast.secondsSinceReferenceDate;

TesselUserID user(const char* name) {
    return {TesselServiceID::aim, QString::fromLatin1(name)};
}

struct Said {
    double date;
    const char* text;
    const char* sender = "ann";
    bool continues = false;
};

/// A file as it is read, with marks of its own that a merged chat must not take over.
SessionLog session(std::uint32_t file, const std::vector<Said>& all, const char* own = "me",
                   const char* other = "ann") {
    std::vector<Log::Event> events;
    std::vector<bool> continuations;
    const auto add = [&](double date, SharedUserID sender, Log::Event::Value value) {
        events.push_back({std::ssize(events) + 1, {date}, std::move(sender), std::move(value)});
    };
    for (const Said& said : all) {
        if (!said.continues) add(said.date, {}, Log::NewDay());
        continuations.resize(events.size(), false);
        continuations.push_back(said.continues);
        SharedUserID sender;
        if (*said.sender) sender = user(said.sender);
        add(said.date, sender, Log::PlainText{QString::fromLatin1(said.text)});
    }
    return {file, QByteArray("/chats/") + static_cast<char>('A' + file) + ".ichat",
            std::make_shared<const Log>(TesselServiceID::aim, user(own),
                                        QSet<TesselUserID>{user(other)}, events, continuations)};
}

/// Texts, "[A]" for headings, "day", "minute" and "(ann)" for the end of a run.
std::string shown(const Log& log) {
    QStringList all;
    qint64 sequence = 0;
    for (const Log::Event& event : log.events()) {
        EXPECT_EQ(event.sequence, ++sequence);
        if (const auto* text = std::get_if<Log::PlainText>(&event.value))
            all << (log.continuesMessage(static_cast<std::size_t>(sequence - 1))
                        ? QStringLiteral("+")
                        : QString()) +
                       text->text;
        if (const auto* heading = std::get_if<Log::Session>(&event.value))
            all << u'[' + heading->name() + u']';
        if (std::holds_alternative<Log::NewDay>(event.value)) all << QStringLiteral("day");
        if (std::holds_alternative<Log::NewMinute>(event.value)) all << QStringLiteral("minute");
        if (std::holds_alternative<Log::User>(event.value))
            all << u'(' + event.sender->userID + u')';
    }
    return all.join(u' ').toStdString();
}

struct Row {
    const char* name;
    std::vector<SessionLog> sessions;
    const char* expected;
};

TEST(MergedChat, ShowsEachMessageOnceInOrderOfTime) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Row rows[] = {
        {"later file first",
         {session(0, {{90, "c"}}), session(1, {{5, "a"}, {6, "b", "me"}})},
         "[B] day a (ann) b (me) [A] minute c"},
        {"another day",
         {session(0, {{5, "a"}}), session(1, {{90000, "b"}})},
         "[A] day a (ann) [B] day b"},
        {"really mixed",
         {session(0, {{1, "a"}, {3, "c"}}), session(1, {{2, "b"}, {4, "d"}})},
         "[A] day a (ann) [B] b c d"},
        {"equal times stay together",
         {session(0, {{1, "a"}, {2, "b"}}), session(1, {{2, "x"}, {2, "y"}, {3, "z"}})},
         "[A] day a b (ann) [B] x y z"},
        {"repeated stretch",
         {session(0, {{1, "a"}, {2, "b"}, {3, "c"}}), session(1, {{2, "b"}, {3, "c"}, {4, "d"}})},
         "[A] day a b c (ann) [B] d"},
        {"another one before what isn't repeated",
         {session(0, {{1, "a"}, {2, "b"}, {5, "c"}}), session(1, {{2, "b"}, {5, "c"}, {6, "d"}}),
          session(2, {{3, "x"}})},
         "[A] day a b (ann) [C] x c (ann) [B] d"},
        {"a copied file",
         {session(0, {{1, "a"}, {2, "b"}}), session(1, {{1, "a"}, {2, "b"}})},
         "[A] day a b"},
        {"said twice in one file, and in the other",
         {session(0, {{1, "a"}, {1, "a"}}), session(1, {{1, "a"}, {1, "a"}})},
         "[A] day a a"},
        {"said more often in the later file",
         {session(0, {{1, "a"}}), session(1, {{1, "a"}, {1, "a"}})},
         "[A] day a (ann) [B] a"},
        {"three files",
         {session(0, {{1, "a"}, {2, "b"}}), session(1, {{1, "a"}, {1, "a"}}),
          session(2, {{1, "a"}, {1, "a"}, {2, "b"}})},
         "[A] day a (ann) [B] a b"},
        {"another sender, content or instant",
         {session(0, {{1, "a"}, {2, "b"}, {3, "c"}}),
          session(1, {{1, "a", "me"}, {2, "B"}, {2.5, "c"}})},
         "[A] day a (ann) [B] a (me) b B c c"},
        {"status lines",
         {session(0, {{1, "on", ""}, {2, "a"}}), session(1, {{1, "on", ""}})},
         "[A] day on a"},
        {"part of a message is no repetition",
         {session(0, {{1, "a"}, {1, "b", "ann", true}}), session(1, {{1, "a"}})},
         "[A] day a +b (ann) [B] a"},
        {"a message of several pieces",
         {session(0, {{1, "a"}, {1, "b", "ann", true}}),
          session(1, {{1, "a"}, {1, "b", "ann", true}, {2, "c"}})},
         "[A] day a +b (ann) [B] c"},
        {"undated ones belong to their neighbours",
         {session(0, {{undated, "on", ""}, {1, "a"}, {nan, "b"}}),
          session(1, {{undated, "on", ""}, {5, "c"}})},
         "[A] day on a b (ann) [B] on c"},
        {"a clock that was set back",
         {session(0, {{5, "a"}, {2, "b"}, {6, "c"}})},
         "[A] day a b c"},
        {"one date far in the future",
         {session(0, {{1e9, "a"}, {2, "b"}, {3, "c"}}), session(1, {{7, "d"}})},
         "[A] day a day b c (ann) [B] d"},
        {"an instant that two files share",
         {session(0, {{1, "a"}, {2, "b"}}), session(1, {{2, "b"}, {3, "c"}})},
         "[A] day a b (ann) [B] c"},
        {"a repetition of what a wrong clock dated",
         {session(0, {{5, "a"}, {9, "b"}, {6, "c"}}), session(1, {{9, "b"}, {10, "d"}})},
         "[A] day a b c (ann) [B] d"},
        {"an empty file", {session(0, {}), session(1, {{1, "a"}})}, "[B] day a"},
        {"no file", {}, ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(shown(*mergeChats(row.sessions, utc).log()), row.expected) << row.name;
}

TEST(MergedChat, KnowsWhereMessagesAreAndWhereTheyComeFrom) {
    const MergedChat chat = mergeChats(
        {session(7, {{100, "b"}, {300, "c"}}), session(2, {{10, "a"}, {100, "b"}, {86500, "d"}})},
        utc);
    ASSERT_EQ(shown(*chat.log()), "[C] day a minute b (ann) [H] minute c day d");
    const auto rowOf = [&](std::uint32_t file, std::uint32_t sequence) -> std::string {
        const auto row = chat.rowOf({file, sequence});
        if (!row) return "none";
        EXPECT_EQ(chat.rowOf(chat.originAt(*row)), row);
        const auto& value = chat.log()->events()[static_cast<std::size_t>(*row)].value;
        return std::get<Log::PlainText>(value).text.toStdString();
    };
    EXPECT_EQ(rowOf(2, 2), "a");
    EXPECT_EQ(rowOf(2, 1), "a") << "the mark above it";
    EXPECT_EQ(rowOf(2, 4), "b");
    EXPECT_EQ(rowOf(7, 2), "b") << "one of the two is shown";
    EXPECT_EQ(rowOf(7, 4), "c");
    EXPECT_EQ(rowOf(2, 6), "d");
    EXPECT_EQ(rowOf(5, 1), "none");
    for (const MergedSession& each : chat.sessions()) {
        const auto& heading = chat.log()->events()[static_cast<std::size_t>(each.row)].value;
        EXPECT_EQ(std::get<Log::Session>(heading).path, each.path);
        EXPECT_EQ(chat.log()->events()[static_cast<std::size_t>(each.row)].timestamp,
                  foundation::Date{each.file == 7 ? 300.0 : 10.0})
            << "of what is left of it";
        EXPECT_EQ(each.last.secondsSinceReferenceDate, each.file == 7 ? 300 : 86500);
    }
    const auto [first, second] = std::pair(chat.sessions()[0].row, chat.sessions()[1].row);
    EXPECT_EQ(chat.sessionBeside(first, 1), second);
    EXPECT_EQ(chat.sessionBeside(second + 1, -1), second);
    EXPECT_EQ(chat.sessionBeside(first, -1), std::nullopt);
    const std::vector<Said> pieces{{1, "a"}, {1, "b", "ann", true}};
    const MergedChat twice = mergeChats({session(0, pieces), session(1, pieces)}, utc);
    EXPECT_EQ(twice.rowOf({1, 3}), twice.rowOf({0, 3})) << "each piece is one of the other's";
}

TEST(Conversation, HoldsWhatIsReadOfMessages) {
    const auto link = [](const char* address, const char* title) {
        return Log::Link{std::make_shared<foundation::URL>(QString::fromLatin1(address)),
                         QString::fromLatin1(title)};
    };
    const SharedUserID ann = user("ann");
    const Log log(TesselServiceID::aim, user("me"), {user("ann")},
                  {{1, {1}, {}, Log::NewDay()},
                   {2, {1}, ann, Log::PlainText{QStringLiteral("See ")}},
                   {3, {1}, ann, link("http://a/", "this")},
                   {4, {1}, ann, link("http://b/", "http://b/")},
                   {5, {2}, ann, Log::PlainText{}},
                   {6, {3}, ann, Log::PlainText{QStringLiteral("end")}}},
                  {false, false, true, true, false, false});
    const Conversation all = conversationOf(log, 0);
    ASSERT_EQ(all.messages.size(), 2U) << "one of three pieces, and none without words";
    EXPECT_EQ(all.messages[0].text, QStringLiteral("See this (http://a/)http://b/"));
    EXPECT_EQ(all.messages[0].kinds, ContentKinds::text | ContentKinds::link);
    EXPECT_EQ(all.messages[1].sequence, 6);
}

TEST(MergedChat, TheOwnerIsWhoeverMostFilesBelongTo) {
    const MergedChat chat =
        mergeChats({session(0, {{1, "a"}}, "me", "ann"), session(1, {{2, "b"}}, "old me", "bob"),
                    session(2, {{3, "c"}}, "me", "old ann"), session(3, {{4, "d"}}, "ann", "?"),
                    session(4, {{5, "e"}}, "?", "ann"), session(5, {{6, "f"}}, "bob", "?")},
                   utc);
    EXPECT_EQ(chat.log()->ownUserID(), user("me"));
    EXPECT_TRUE(chat.log()->isOwn(user("old me")));
    EXPECT_FALSE(chat.log()->isOwn(user("ann"))) << "one file is wrong";
    EXPECT_FALSE(chat.log()->isOwn(user("bob"))) << "as many say so as say otherwise";
    EXPECT_FALSE(chat.log()->isOwn({}));
    EXPECT_TRUE(chat.log()->otherUserIDs().contains(user("old ann")));
}

}  // namespace
}  // namespace vell
