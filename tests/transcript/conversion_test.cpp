// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <cmath>

#include "transcript/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using foundation::Date;
using testing::ElementsAre;

using Sender = std::shared_ptr<const Presentity>;

std::shared_ptr<const InstantMessage> message(
    const Sender& sender, std::optional<Date> date, std::optional<QString> original,
    std::shared_ptr<const foundation::AttributedString> formatted = nullptr) {
    return std::make_shared<const InstantMessage>(date, std::move(original), std::move(formatted),
                                                  true, nullptr, sender);
}

TEST(Conversion, MarkersBetweenMessages) {
    const Sender alice = person("alice");
    const Sender bob = person("bob");
    const Sender alicesTwin = person("alice");
    const Sender alice2 = person("alice", u"Jabber"_s);
    const auto say = [](const Sender& who, const char* when) {
        return message(who, when ? std::optional(at(when)) : std::nullopt, u"x"_s);
    };
    struct Row {
        const char* name;
        const char* zone;
        Messages messages;
        std::vector<std::string> events;
    };
    const Row rows[] = {
        {"same sender, same minute: nothing between",
         "UTC",
         {say(alice, "2009-07-04T13:04:05Z"), say(alicesTwin, "2009-07-04T13:04:59Z")},
         {"day", "alice: text x", "alice: text x"}},
        {"the run ends before the minute changes",
         "UTC",
         {say(alice, "2009-07-04T13:04:59Z"), say(bob, "2009-07-04T13:05:00Z")},
         {"day", "alice: text x", "alice: user", "minute", "bob: text x"}},
        {"the same account on another service is another user",
         "UTC",
         {say(alice, "2009-07-04T13:04:05Z"), say(alice2, "2009-07-04T13:04:05Z")},
         {"day", "alice: text x", "alice: user", "alice: text x"}},
        {"a system message ends a run and begins none",
         "UTC",
         {say(alice, "2009-07-04T13:04:05Z"), say(nullptr, "2009-07-04T13:04:05Z"),
          say(alice, "2009-07-04T13:04:05Z")},
         {"day", "alice: text x", "alice: user", "text x", "alice: text x"}},
        {"midnight in the zone",
         "Europe/Berlin",
         {say(alice, "2009-07-04T21:59:59Z"), say(alice, "2009-07-04T22:00:00Z")},
         {"day", "alice: text x", "day", "alice: text x"}},
        {"UTC's midnight is an ordinary minute elsewhere",
         "Asia/Kolkata",
         {say(alice, "2009-07-04T23:59:59Z"), say(alice, "2009-07-05T00:00:00Z")},
         {"day", "alice: text x", "minute", "alice: text x"}},
        {"the same wall-clock minute an hour later in autumn",
         "America/New_York",
         {say(alice, "2009-11-01T05:30:10Z"), say(alice, "2009-11-01T06:30:20Z")},
         {"day", "alice: text x", "minute", "alice: text x"}},
        {"back in time to an earlier day",
         "UTC",
         {say(alice, "2009-07-04T13:04:05Z"), say(alice, "2009-07-03T13:04:05Z")},
         {"day", "alice: text x", "day", "alice: text x"}},
        {"without a date at first: the beginning of time, and no day",
         "America/New_York",
         {say(alice, nullptr), say(alice, "2009-07-04T13:04:05Z"), say(alice, nullptr)},
         {"alice: text x", "day", "alice: text x", "alice: text x"}},
        {"the beginning of time as it is archived is no day either",
         "America/New_York",
         {message(alice, Date{-63114076800.0}, u"x"_s), say(alice, nullptr)},
         {"alice: text x", "alice: text x"}},
        {"beyond the year 9999 days and minutes go on",
         "Europe/Berlin",
         {message(alice, Date{3e11}, u"x"_s), message(alice, Date{3e11 + 60}, u"x"_s),
          message(alice, Date{3e11 + 86400}, u"x"_s)},
         {"day", "alice: text x", "minute", "alice: text x", "day", "alice: text x"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(summary(convert(root(u"AIM"_s, row.messages), row.zone)), row.events);
        const auto calendar = foundation::Calendar::named(row.zone);
        for (const char* zone : {"UTC", "Asia/Kolkata", "Pacific/Kiritimati"}) {
            const TesselChatLog elsewhere = convert(root(u"AIM"_s, row.messages), zone);
            EXPECT_EQ(summary(elsewhere.markedIn(*calendar)), row.events) << "from " << zone;
        }
    }
}

TEST(Conversion, EventsAreNumberedAndDated) {
    const Date first = at("2009-07-04T13:04:05.250Z");
    const TesselChatLog log =
        convert(root(u"AIM"_s, {message(person("alice"), std::nullopt, u"a"_s),
                                message(person("bob"), first, u"b"_s),
                                message(person("bob"), Date{std::nan("")}, u"c"_s),
                                message(person("bob"), std::nullopt, u"d"_s)}));
    // b closes alice's run at its own date.
    EXPECT_THAT(summary(log), ElementsAre("alice: text a", "alice: user", "day", "bob: text b",
                                          "day", "bob: text c", "bob: text d"));
    for (std::size_t i = 0; i < log.events().size(); ++i)
        EXPECT_EQ(log.events()[i].sequence, static_cast<qint64>(i) + 1);
    EXPECT_EQ(log.events()[0].timestamp, Date::distantPast);
    EXPECT_EQ(log.events()[1].timestamp, first);
    EXPECT_TRUE(std::isnan(log.events()[6].timestamp.secondsSinceReferenceDate));
    EXPECT_EQ(log.events()[3].description().toStdString(),
              "<Event[4]: ts=2009-07-04T13:04:05.250Z by=<@bob (AIM)> \"b\">");
}

TEST(Conversion, Contents) {
    const Sender alice = person("alice");
    struct Row {
        const char* name;
        std::shared_ptr<const InstantMessage> message;
        std::vector<std::string> events;
        std::vector<std::string> printed;
    };
    const Row rows[] = {
        {"formatted text wins over the original",
         message(alice, std::nullopt, u"plain"_s, text(u"formatted"_s)),
         {"alice: text formatted"},
         {}},
        {"formatted text without runs doesn't count",
         message(alice, std::nullopt, u"plain"_s, text(QString())),
         {"alice: text plain"},
         {}},
        {"a name takes the place of each placeholder in system messages",
         message(nullptr, std::nullopt, std::nullopt, text(u"%@ has left, %@"_s)),
         {"text User has left, User"},
         {}},
        {"in unformatted ones too",
         message(nullptr, std::nullopt, u"%@ left"_s),
         {"text User left"},
         {}},
        {"but not in what a user wrote",
         message(alice, std::nullopt, std::nullopt, text(u"%@"_s)),
         {"alice: text %@"},
         {}},
        {"nothing at all, by a user",
         message(alice, std::nullopt, std::nullopt),
         {"alice: text "},
         {"WARN: Found no content in message: <Message: alice read>"}},
        {"nothing at all, without a sender",
         message(nullptr, std::nullopt, std::nullopt),
         {},
         {"WARN: Found no content in message: <Message: read>"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        PrintedLines printed;
        EXPECT_EQ(summary(convert(root(u"AIM"_s, {row.message}))), row.events);
        EXPECT_EQ(printed.lines, row.printed);
    }
}

TEST(Conversion, RunsOfOneMessageAreKeptTogether) {
    const Sender alice = person("alice");
    const auto link = std::make_shared<const foundation::Attributes>(
        foundation::Attributes{std::make_shared<const foundation::URL>(u"a:b"_s), {}, {}});
    using Runs = std::vector<foundation::AttributedString::Run>;
    const auto linked = std::make_shared<const foundation::AttributedString>(
        u"see it now"_s, Runs{{4, nullptr}, {2, link}, {4, nullptr}});
    const auto once = std::make_shared<const foundation::AttributedString>(
        u"it!"_s, Runs{{2, link}, {1, nullptr}});
    // All at one instant, as messages without a date are.
    const TesselChatLog log =
        convert(root(u"AIM"_s, {message(alice, std::nullopt, u"x"_s),
                                message(alice, std::nullopt, std::nullopt, linked),
                                message(alice, std::nullopt, std::nullopt, linked),
                                message(alice, std::nullopt, std::nullopt),
                                message(nullptr, std::nullopt, std::nullopt, once),
                                message(nullptr, std::nullopt, std::nullopt, once),
                                message(nullptr, std::nullopt, u"y"_s)}));
    for (const TesselChatLog& each : {log, log.markedIn(foundation::Calendar(QTimeZone::utc()))}) {
        std::string joined;
        for (std::size_t i = 0; i < each.events().size(); ++i)
            joined += each.continuesMessage(i) ? '+' : '|';
        EXPECT_EQ(joined, "||++|++|||+|+|") << "the ninth is the marker";
    }
    const TesselChatLog borderless(log.serviceID(), log.ownUserID(), log.otherUserIDs(),
                                   log.events());
    EXPECT_EQ(borderless, log);
    EXPECT_FALSE(borderless.continuesMessage(2));
}

TEST(Conversion, PrintsFewAndShortLinesAboutOneFile) {
    const Messages messages(
        1500, message(person(QByteArray(5000, 'a').constData()), std::nullopt, std::nullopt));
    for (int i = 0; i < 2; ++i) {
        PrintedLines printed;
        (void)convert(root(u"AIM"_s, messages));
        ASSERT_EQ(printed.lines.size(), 1001u);
        EXPECT_EQ(QString::fromStdString(printed.lines.front()).size(), 1000);
        EXPECT_EQ(printed.lines.back(), "WARN: 500 more lines about this file");
    }
}

TEST(Conversion, OwnUserAndOthers) {
    const auto say = [](const Sender& who) { return message(who, std::nullopt, u"x"_s); };
    struct Row {
        const char* name;
        Messages messages;
        Presentities participants;
        const char* own;
        std::vector<std::string> others;
    };
    const Row rows[] = {
        {"the only one who isn't listed",
         {say(person("me")), say(person("alice"))},
         {person("alice"), person("bob")},
         "<@me (AIM)>",
         {"<@alice (AIM)>", "<@bob (AIM)>"}},
        {"only a listed one speaks",
         {say(person("alice"))},
         {person("alice")},
         "<@? (AIM)>",
         {"<@alice (AIM)>"}},
        {"two who aren't listed",
         {say(person("me")), say(person("me", u"Jabber"_s))},
         {},
         "<@? (AIM)>",
         {"<@me (AIM)>", "<@me (Jabber)>"}},
        {"listed without an account doesn't count",
         {say(person("")), say(person("alice"))},
         {person(""), person("alice")},
         "<@ (AIM)>",
         {"<@alice (AIM)>"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const TesselChatLog log = convert(root(u"AIM"_s, row.messages, row.participants));
        EXPECT_EQ(log.ownUserID().description().toStdString(), row.own);
        std::vector<std::string> others;
        for (const TesselUserID& other : sorted(log.otherUserIDs()))
            others.push_back(other.description().toStdString());
        EXPECT_EQ(others, row.others);
    }
}

TEST(Conversion, EmptyTranscripts) {
    const Date date = at("2009-07-04T13:04:05Z");
    const TesselChatLog dated = convert(
        root(u"AIM"_s, {}, {person("zoe"), person("bob"), person("al", u"A"_s)}), "UTC", date);
    EXPECT_THAT(summary(dated), ElementsAre("day", "text The chatlog is empty.",
                                            "text Participants: al, bob, zoe"));
    EXPECT_EQ(dated.events().back().timestamp, date);

    const TesselChatLog bare = convert(root(QString(), {}));
    EXPECT_THAT(summary(bare), ElementsAre("text The chatlog is empty."));
    EXPECT_EQ(bare.markedIn(foundation::Calendar(QTimeZone::utc())), bare);
    EXPECT_LT(std::abs(bare.events()[0].timestamp.secondsSinceReferenceDate -
                       Date::now().secondsSinceReferenceDate),
              60);
    EXPECT_EQ(bare.ownUserID().description().toStdString(), "<@? ()>");
}

TEST(Conversion, MessagesThatShareTheirTextShareTheEventsText) {
    const auto shared = text(u"%@ has left the chat."_s);
    const auto again = message(nullptr, std::nullopt, std::nullopt, shared);
    const TesselChatLog log =
        convert(root(u"AIM"_s, {again, again, message(nullptr, std::nullopt, std::nullopt, shared),
                                message(person("alice"), std::nullopt, std::nullopt, shared)}));
    const auto characters = [&log](std::size_t i) {
        return std::get<TesselChatLog::PlainText>(log.events()[i].value).text.constData();
    };
    ASSERT_EQ(log.events().size(), 4U);
    EXPECT_EQ(characters(0), characters(1));
    EXPECT_EQ(characters(0), characters(2));
    EXPECT_EQ(characters(3), shared->text().constData());

    // Errors are printed for each message.
    const auto attachment = std::make_shared<const foundation::TextAttachment>();
    const auto broken = std::make_shared<const foundation::AttributedString>(
        u"\ufffc"_s, std::make_shared<const foundation::Attributes>(
                         foundation::Attributes{{}, foundation::Value(attachment), {}}));
    const PrintedLines printed;
    const auto first = message(nullptr, std::nullopt, std::nullopt, broken);
    convert(root(u"AIM"_s, {first, first, message(nullptr, std::nullopt, std::nullopt, broken)}));
    EXPECT_EQ(printed.lines.size(), 3U);
}

}  // namespace
}  // namespace vell
