// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "export/json.h"
#include "export/json_writer.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using foundation::Date;

TEST(Json, NumbersComeBackAsTheyWere) {
    struct Row {
        double value;
        const char* text;
    };
    const Row rows[] = {
        {268405445.25, "268405445.25"},
        {200000000, "200000000"},
        {0.1, "0.1"},
        {-63113904000.0, "-63113904000"},
        {9.4e12, "9400000000000"},
        {-0.5, "-0.5"},
        {1000.05, "1000.05"},
        {0.001, "0.001"},
        {999999999999.999, "999999999999.999"},
        {0.0005, "0.0005"},
        {1e300, "1e+300"},
        {5e-324, "5e-324"},
        {268405445.123456, "268405445.123456"},
        {std::nan(""), "null"},
        {-std::numeric_limits<double>::infinity(), "null"},
    };
    for (const Row& row : rows) {
        JsonWriter writer;
        writer.number(row.value);
        EXPECT_EQ(writer.take().toStdString(), row.text);
    }
}

TEST(Json, TextIsEscapedAndValidUtf8) {
    JsonWriter writer;
    writer.string(u"longer than a block \"\\/\b\t\n\f\r\x0b\x01\x7fé\U0001d4b3"_s + QChar(0xd835) +
                  u'x' + QChar(0xdcb3) + QChar(0));
    EXPECT_EQ(writer.take().toStdString(),
              "\"longer than a block \\\"\\\\/\\b\\t\\n\\f\\r\\u000b\\u0001\x7f"
              "é\U0001d4b3\ufffdx\ufffd\\u0000\"");
}

TEST(Json, EveryKindInItsFixedOrder) {
    const TesselServiceID aim = TesselServiceID::aim;
    const TesselUserID alice{aim, u"alice"_s};
    const foundation::Data bytes = QByteArray("abc");
    const auto wrapper = std::make_shared<foundation::FileWrapper>(bytes);
    wrapper->preferredFilename = u"a.txt"_s;
    const auto folder =
        std::make_shared<foundation::FileWrapper>(foundation::FileWrapper::Kind::directory);
    const foundation::Picture sized{bytes, foundation::PictureFormat::png, QSize(2, 3)};
    const foundation::Data others = QByteArray("xyz");
    const foundation::Picture unsized{others, foundation::PictureFormat::pdf, std::nullopt};
    std::vector<TesselChatLog::Event> events;
    const auto add = [&events](double seconds, std::optional<TesselUserID> sender,
                               TesselChatLog::Event::Value value) {
        events.push_back({static_cast<qint64>(events.size()) + 1, Date{seconds}, std::move(sender),
                          std::move(value)});
    };
    add(268405445.25, std::nullopt, TesselChatLog::NewDay());
    add(268405445.25, alice, TesselChatLog::PlainText{u"hi"_s});
    add(268405445.25, alice, TesselChatLog::Image(sized, bytes, u"public.png"_s, u"/a.png"_s));
    add(268405445.25, alice,
        TesselChatLog::Image(unsized, others, u"public.image"_s, std::nullopt));
    add(268405445.25, alice, TesselChatLog::File{wrapper});
    add(268405445.25, alice, TesselChatLog::File{folder});
    add(9.4e12, alice,
        TesselChatLog::Link{std::make_shared<foundation::URL>(u"http://a/"_s), u"a"_s});
    add(std::nan(""), alice, TesselChatLog::User());
    add(0, std::nullopt, TesselChatLog::NewMinute());
    const TesselChatLog log(aim, alice,
                            {{TesselServiceID::jabber, u"a"_s}, {aim, u"zoe"_s}, {aim, u"bob"_s}},
                            std::move(events));
    std::string written;
    writeJson(log,
              [&written](QByteArrayView bytes) { written.append(bytes.begin(), bytes.end()); });

    const std::string head =
        R"("timestamp":"2009-07-04T13:04:05.250Z","secondsSinceReferenceDate":268405445.25,)";
    const std::string sender = R"("sender":{"serviceID":"AIM","userID":"alice"},)";
    const std::string hash =
        R"("byteCount":3,"sha256":"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad")";
    const std::string otherHash =
        R"("byteCount":3,"sha256":"3608bca1e44ea6c4d268eb6db02260269892c0b42b86bbf1e77a6fa16c3c9282")";
    const std::string expected =
        R"({"schema":1,"serviceID":"AIM","ownUserID":{"serviceID":"AIM","userID":"alice"},)"
        R"("otherUserIDs":[{"serviceID":"AIM","userID":"bob"},{"serviceID":"AIM","userID":"zoe"},)"
        R"({"serviceID":"Jabber","userID":"a"}],"events":[)"
        "\n"
        R"({"sequence":1,)" +
        head + R"("sender":null,"kind":"newDay"},)" + "\n" + R"({"sequence":2,)" + head + sender +
        R"("kind":"plainText","text":"hi"},)" + "\n" + R"({"sequence":3,)" + head + sender +
        R"("kind":"image","type":"public.png","path":"/a.png",)" + hash +
        R"(,"pixelWidth":2,"pixelHeight":3},)" + "\n" + R"({"sequence":4,)" + head + sender +
        R"("kind":"image","type":"public.image","path":null,)" + otherHash +
        R"(,"pixelWidth":null,"pixelHeight":null},)" + "\n" + R"({"sequence":5,)" + head + sender +
        R"("kind":"file","fileName":"a.txt","isDirectory":false,)" + hash + "},\n" +
        R"({"sequence":6,)" + head + sender +
        R"("kind":"file","fileName":null,"isDirectory":true,"byteCount":null,"sha256":null},)" +
        "\n" + R"({"sequence":7,"timestamp":null,"secondsSinceReferenceDate":9400000000000,)" +
        sender + R"("kind":"link","url":"http://a/","title":"a"},)" + "\n" +
        R"({"sequence":8,"timestamp":null,"secondsSinceReferenceDate":null,)" + sender +
        R"("kind":"user"},)" + "\n" +
        R"({"sequence":9,"timestamp":"2001-01-01T00:00:00.000Z","secondsSinceReferenceDate":0,)" +
        R"("sender":null,"kind":"newMinute"})" + "\n]}\n";
    EXPECT_EQ(written, expected);
}

}  // namespace
}  // namespace vell
