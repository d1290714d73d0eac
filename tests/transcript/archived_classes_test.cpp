// SPDX-License-Identifier: MIT
#include "transcript/archived_classes.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "transcript/chat_timeline.h"
#include "transcript/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using foundation::Array;
using foundation::Number;
using foundation::Value;
using test::person;

/// Decodes values from a list, in order, like a non-keyed archive.
class ListCoder final : public foundation::Coder {
  public:
    explicit ListCoder(std::vector<Value> values) : values_(std::move(values)) {}
    [[nodiscard]] bool isKeyed() const override { return false; }
    Value decodeObject(std::string_view) override { return {}; }
    Value decodeObject() override { return next_ < values_.size() ? values_[next_++] : Value(); }
    std::optional<quint32> decodeUInt32() override {
        const Value value = decodeObject();
        if (!value.number()) return std::nullopt;
        return static_cast<quint32>(value.number()->toInt64().value_or(0));
    }
    [[nodiscard]] QString description() const override { return u"<ListCoder>"_s; }

  private:
    std::vector<Value> values_;
    std::size_t next_ = 0;
};

/// Decodes values by key.
class MapCoder final : public foundation::Coder {
  public:
    explicit MapCoder(std::map<std::string, Value, std::less<>> values)
        : values_(std::move(values)) {}
    [[nodiscard]] bool isKeyed() const override { return true; }
    Value decodeObject(std::string_view key) override {
        const auto at = values_.find(key);
        return at == values_.end() ? Value() : at->second;
    }
    Value decodeObject() override { return {}; }
    std::optional<quint32> decodeUInt32() override { return std::nullopt; }
    [[nodiscard]] QString description() const override { return u"<MapCoder>"_s; }

  private:
    std::map<std::string, Value, std::less<>> values_;
};

TEST(ArchivedClasses, Presentities) {
    const auto keyed = [](Value account, Value service) {
        MapCoder coder({{"ID", std::move(account)}, {"ServiceName", std::move(service)}});
        return Presentity::initWithCoder(coder);
    };
    const auto nonKeyed = [](Value account, Value service) {
        ListCoder coder({std::move(service), std::move(account)});
        return Presentity::initWithCoder(coder);
    };
    struct Row {
        Value account;
        Value service;
        const char* description;
    };
    const Row rows[] = {
        {u"alice"_s, u"AIM"_s, "<Presentity: alice service=AIM>"},
        {u"bob"_s, {}, "<Presentity: bob>"},
        {Number(qint64(7)), Number(true), "<Presentity: >"},
        {u"e:al@example.com"_s, u"iMessage"_s, "<Presentity: al@example.com service=iMessage>"},
        {u"e:e:x"_s, u"iMessage"_s, "<Presentity: e:x service=iMessage>"},
        {u"e:"_s, u"iMessage"_s, "<Presentity:  service=iMessage>"},
        {u"e:al@example.com"_s, u"imessage"_s, "<Presentity: e:al@example.com service=imessage>"},
        {u"e:al@example.com"_s, {}, "<Presentity: e:al@example.com>"},
        {u"p:+15550100"_s, u"iMessage"_s, "<Presentity: p:+15550100 service=iMessage>"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(keyed(row.account, row.service).description().toStdString(), row.description);
        EXPECT_EQ(nonKeyed(row.account, row.service).description().toStdString(), row.description);
    }
}

TEST(ArchivedClasses, Messages) {
    const foundation::Date date = test::at("2009-07-04T13:04:05Z");
    const auto body = test::text(u"body"_s);
    MapCoder complete({{"Sender", person("alice")},
                       {"Subject", person("bob", u"AIM"_s)},
                       {"Time", date},
                       {"OriginalMessage", u"typed"_s},
                       {"MessageText", body},
                       {"IsRead", Number(false)}});
    EXPECT_EQ(InstantMessage::initWithCoder(complete).description().toStdString(),
              "<Message: alice \"typed\" date=2009-07-04 13:04:05 +0000"
              " subject=<Presentity: bob service=AIM> message=body>");

    MapCoder mistyped({{"Sender", u"alice"_s},
                       {"Subject", date},
                       {"Time", u"now"_s},
                       {"OriginalMessage", body},
                       {"MessageText", u"body"_s},
                       {"IsRead", u"NO"_s}});
    EXPECT_EQ(InstantMessage::initWithCoder(mistyped).description().toStdString(),
              "<Message: read>");

    ListCoder positional({person("alice"), date, body, Number(qint64(0xffffffff))});
    EXPECT_EQ(InstantMessage::initWithCoder(positional).description().toStdString(),
              "<Message: alice date=2009-07-04 13:04:05 +0000 read message=body"
              " flags=4294967295>");
    ListCoder exhausted({Value(), date});
    EXPECT_EQ(InstantMessage::initWithCoder(exhausted).description().toStdString(),
              "<Message: date=2009-07-04 13:04:05 +0000 read>");
}

TEST(ArchivedClasses, PlaceholdersPrintALine) {
    test::PrintedLines printed;
    MapCoder coder({});
    for (const char* name : {"IMHandle", "IMDirectlyObservableObject", "Person"})
        EXPECT_EQ(sharedClassRegistry().find(name)->initWithCoder(coder).className(), name);
    EXPECT_EQ(printed.lines, (std::vector<std::string>{
                                 "IMHandle INIT: <MapCoder>",
                                 "IMDirectlyObservableObject INIT: <MapCoder>",
                             }));
}

TEST(ArchivedClasses, AllowedListIsCompleteWithoutPerson) {
    EXPECT_EQ(allowedClassList().size(), 25U);
    for (const foundation::ClassInfo* info : allowedClassList())
        EXPECT_TRUE(info->name != "Person" && info->supportsSecureCoding) << info->name.data();
    ASSERT_TRUE(sharedClassRegistry().find("Person"));
    EXPECT_FALSE(sharedClassRegistry().find("Person")->supportsSecureCoding);
}

static_assert(!std::is_default_constructible_v<InstantMessage> &&
              !std::is_default_constructible_v<Presentity> &&
              !std::is_default_constructible_v<IMHandle> &&
              !std::is_default_constructible_v<IMDirectlyObservableObject> &&
              !std::is_default_constructible_v<Person>);

TEST(Timeline, EqualInWhatWasArchived) {
    const auto message = std::make_shared<const InstantMessage>(std::nullopt);
    const auto timeline = [](const test::Messages& messages, const char* name = "AIM") {
        return iChatTimeline::fromValues(
            *test::root(QString::fromUtf8(name), messages, {}).object<Array>());
    };
    EXPECT_EQ(timeline({message}), timeline({message}));
    EXPECT_EQ(qHash(timeline({message})), qHash(timeline({message})));
    const iChatTimeline others[] = {
        timeline({message}, "Jabber"), timeline({message, message}), timeline({}),
        timeline({std::make_shared<const InstantMessage>(std::nullopt)})};
    for (const iChatTimeline& other : others) {
        EXPECT_FALSE(other == timeline({message}));
        EXPECT_NE(qHash(other), qHash(timeline({message})));
    }
}

TEST(Timeline, RootArrayByIndex) {
    const Value message = std::make_shared<const InstantMessage>(std::nullopt);
    const auto array = [](std::vector<Value> values) {
        return Value(std::make_shared<const Array>(std::move(values)));
    };
    const Value dictionary =
        std::make_shared<const foundation::Dictionary>(std::vector<std::pair<Value, Value>>());
    struct Row {
        const char* name;
        std::vector<Value> values;
        bool isKeyed;
        std::string fields;  // 0 1 4 5 6 7, then the number of messages and participants
        std::vector<std::string> printed;
    };
    const Row rows[] = {
        {"all there, keyed",
         {u"AIM"_s, u"a"_s, array({message, message}), array({person("x")}), u"d"_s,
          Number(qint64(5)), u"f"_s, u"g"_s, u"one more"_s},
         true,
         "AIM|a|d|5|f|g|2|1",
         {}},
        {"empty, keyed", {}, true, "|||0|||0|0", {}},
        {"empty, non-keyed", {}, false, "||-1|0|||0|0", {}},
        {"six elements, non-keyed",
         {u"AIM"_s, u""_s, array({}), array({}), Number(qint64(3)), Number(qint64(9))},
         false,
         "AIM||3|9|||0|0",
         {}},
        {"an integer at 4, keyed",
         {u"AIM"_s, u""_s, array({}), array({}), Number(qint64(3))},
         true,
         "AIM|||0|||0|0",
         {"OTHER TYPE: 3 NSNumber"}},
        {"a string at 4, non-keyed",
         {u"AIM"_s, u""_s, array({}), array({}), u"3"_s},
         false,
         "AIM||-1|0|||0|0",
         {"OTHER TYPE: 3 NSString"}},
        {"a dictionary instead of messages",
         {u"AIM"_s, u""_s, dictionary, array({})},
         true,
         "AIM|||0|||0|0",
         {"OTHER TYPE: {} NSDictionary"}},
        {"something else among the participants",
         {u"AIM"_s, u""_s, array({}), array({person("x"), u"y"_s})},
         true,
         "AIM|||0|||0|0",
         {"OTHER TYPE: (<Presentity: x>, y) NSArray"}},
        {"nothing is neither an element nor of another type",
         {Value(), u""_s, array({message, Value()}), Value()},
         true,
         "|||0|||1|0",
         {}},
        {"a fraction is no integer",
         {u"AIM"_s, u""_s, array({}), array({}), u""_s, Number(1.5)},
         true,
         "AIM|||0|||0|0",
         {"OTHER TYPE: 1.5 NSNumber"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        test::PrintedLines printed;
        const Array values(row.values);
        const iChatTimeline timeline = row.isKeyed ? iChatTimeline::fromValues(values)
                                                   : iChatTimeline::fromNonKeyedValues(values);
        const QString fields = QStringList{timeline.protocolName,
                                           timeline.unknown1,
                                           timeline.unknown4,
                                           QString::number(timeline.unknown5),
                                           timeline.unknown6,
                                           timeline.unknown7,
                                           QString::number(timeline.messages.size()),
                                           QString::number(timeline.participants.size())}
                                   .join(u'|');
        EXPECT_EQ(fields.toStdString(), row.fields);
        EXPECT_EQ(printed.lines, row.printed);
    }
}

}  // namespace
}  // namespace vell
