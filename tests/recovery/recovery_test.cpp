// SPDX-License-Identifier: MIT
#include "recovery/recovery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QStringConverter>

#include "foundation/plist/binary_property_list.h"
#include "recovery/repaired_list.h"
#include "writers/transcript_writer.h"

namespace vell::recovery {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using writers::words;

constexpr int dayOfSeconds = 86400;

writers::Transcript transcript() {
    writers::Transcript result{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {1}, {}};
    for (int i = 0; i < 5; ++i)
        result.messages.push_back({.sender = i % 2,
                                   .date = 1e8 + dayOfSeconds * i,
                                   .body = {words(u"text %1"_s.arg(QString(3, QChar(u'a' + i))))}});
    return result;
}

QByteArray binary() {
    return writers::keyedTranscript(transcript());
}
/// Of more objects than a reference of one byte can name, with texts that aren't ASCII.
QByteArray largeBinary() {
    writers::Transcript large = transcript();
    for (int i = 0; i < 150; ++i) {
        large.participants.push_back(large.people.size());
        large.people.push_back({u"r\u00e4v %1"_s.arg(i)});
    }
    return writers::keyedTranscript(large);
}
QByteArray plainXml() {
    return writers::keyedTranscript(transcript(), {.xml = true});
}
QByteArray xmlWithoutLines() {
    return plainXml().replace('\n', "");
}
/// As archivers write it: each tag of a container, each key and each value in a line of its own.
QByteArray xml() {
    const QByteArray bytes = plainXml();
    QByteArray result;
    qsizetype depth = 0;
    for (qsizetype at = 0; at < bytes.size(); ++at) {
        const QByteArrayView rest = QByteArrayView(bytes).sliced(at);
        const bool isContainer = rest.startsWith("<dict>") || rest.startsWith("<array>");
        const bool isEnd = rest.startsWith("</dict>") || rest.startsWith("</array>");
        depth -= isEnd;
        if (rest[0] == '<' && (isEnd || rest[1] != '/')) result += '\n' + QByteArray(depth, '\t');
        depth += isContainer;
        result += rest[0];
    }
    return result;
}
QByteArray utf16(const QByteArray& text) {
    return QStringEncoder(QStringEncoder::Utf16BE,
                          QStringEncoder::Flag::WriteBom)(QString::fromUtf8(text));
}
QByteArray nonKeyed() {
    return writers::nonKeyedTranscript(transcript());
}

QByteArray changed(QByteArray bytes, QByteArrayView from, QByteArrayView to) {
    const qsizetype at = bytes.indexOf(from);
    EXPECT_GE(at, 0) << from.toByteArray().toStdString();
    return bytes.replace(at, from.size(), to);
}

/// Lets a key of a message, counted from 0, refer to what another key of it does.
QByteArray referring(QByteArray xml, const QByteArray& key, int message, const QByteArray& other) {
    const auto reference = [&](const QByteArray& name) {
        qsizetype at = -1;
        for (int i = 0; i <= message; ++i)
            at = xml.indexOf("<key>" + name + "</key>", at + 1);
        at = xml.indexOf("<integer>", at) + qsizetype(qstrlen("<integer>"));
        return std::pair(at, xml.indexOf('<', at) - at);
    };
    const auto [from, length] = reference(other);
    const auto [to, oldLength] = reference(key);
    return xml.replace(to, oldLength, xml.sliced(from, length));
}

/// Whoever wrote a message and its last letter; "-" for a gap.
std::string recovered(const QByteArray& bytes) {
    const auto result =
        recoverChatLog(foundation::Data(bytes), std::nullopt, *foundation::Calendar::named("UTC"));
    if (!result) return "nothing";
    EXPECT_LE(result->extent.damagedAfter, bytes.size());
    if (bytes.startsWith('\x04')) {
        EXPECT_EQ(result->log.serviceID(), TesselServiceID::aim);
    }
    std::string shown;
    bool isFirst = true;
    for (const TesselChatLog::Event& event : result->log.events()) {
        const auto* text = std::get_if<TesselChatLog::PlainText>(&event.value);
        if (!text) continue;
        if (isFirst) {
            EXPECT_EQ(text->text, result->extent.summary());
        }
        if (!isFirst && !event.sender) shown += "-";
        if (event.sender) {
            EXPECT_EQ(event.timestamp.secondsSinceReferenceDate,
                      1e8 + dayOfSeconds * (text->text.back().unicode() - u'a'));
            shown += event.sender->userID.front().toLatin1();
            shown += text->text.back().toLatin1();
        }
        isFirst = false;
    }
    const std::string expected =
        result->extent.expected ? std::to_string(*result->extent.expected) : "?";
    return shown + " of " + expected;
}

TEST(Recovery, WhatIsWholeComesBackAndNothingElse) {
    struct Case {
        const char* what;
        QByteArray bytes;
        const char* recovered;
    };
    const QByteArray textC = "text ccc";
    const QByteArray offsets = binary();
    QByteArray wrongOffset = offsets;
    wrongOffset[wrongOffset.size() - 60] = '\x07';
    const Case cases[] = {
        {"nothing", {}, "nothing"},
        {"no archive", "these are words", "nothing"},
        {"binary, without its last byte", binary().chopped(1), "aabbacbdae of 5"},
        {"a large binary, without its last byte", largeBinary().chopped(1), "aabbacbdae of 5"},
        {"binary, without its table", binary().first(binary().indexOf("text ddd")), "aabbac- of 5"},
        {"binary, an offset wrong", wrongOffset.chopped(1), "aabbacbdae of 5"},
        {"binary, a text's kind wrong", changed(binary(), "\x58" + textC, "\x08" + textC),
         "aabb-bdae of 5"},
        {"binary, a key wrong", changed(binary(), "Sender", "Sendes"), "aabbacbdae of 5"},
        {"binary, a class wrong", changed(binary(), "InstantMessage", "InstbntMessage"),
         "aabbacbdae of 5"},
        {"XML, without its end", xml().first(xml().indexOf("text ddd")), "aabbac- of 5"},
        {"XML, a tag wrong", changed(xml(), "<string>" + textC, "<strinh>" + textC),
         "aabbacbdae of 5"},
        {"XML, a key wrong", changed(xml(), "<key>Sender", "<key>Sendes"), "aabbacbdae of 5"},
        {"XML, a text no UTF-8",
         changed(xml(), textC,
                 "text \xff"
                 "cc"),
         "aabb-bdae of 5"},
        {"XML, a line break wrong", changed(xml(), "</string>\n", "</string>x"), "aabbacbdae of 5"},
        {"XML, a reference wrong", changed(xml(), "<integer>2</integer>", "<integer>x</integer>"),
         "aabbacbdae of 5"},
        {"XML, a person for a time", referring(xml(), "Time", 2, "Sender"), "aabb-bdae of 5"},
        {"binary, a 32-bit real", changed(binary(), "\x54$top", {"\x22\0\0\0\0", 5}).chopped(1),
         "aabbacbdae of 5"},
        {"XML without indentation, cut", plainXml().first(plainXml().indexOf("text ddd")),
         "aabbac- of 5"},
        {"XML without lines, cut", xmlWithoutLines().first(xmlWithoutLines().indexOf("text ddd")),
         "aabbac- of 5"},
        {"XML without lines, tags wrong",
         changed(changed(xmlWithoutLines(), textC + "</string><key>", textC + "</stxxxx><xxx>"),
                 "text ddd</string>", "text ddd</strinh>"),
         "aabb-bdae of 5"},
        {"XML without lines, the end of an object missing",
         changed(xmlWithoutLines(), textC + "</string>", textC + "<<<<<<<<<<</string>"),
         "aabb-bdae of 5"},
        {"XML in UTF-16, cut", utf16(xml().first(xml().indexOf("text ddd"))), "aabbac- of 5"},
        {"XML in UTF-16, half a character",
         changed(utf16(xml()), utf16(textC).sliced(2),
                 utf16(textC).sliced(2).replace(0, 1, "\xd8")),
         "aabb-bdae of 5"},
        {"non-keyed, cut", nonKeyed().first(nonKeyed().indexOf("text ddd")), "aabbac- of 5"},
        {"non-keyed, strings for senders",
         nonKeyed().replace("\x84\x9b\x92\x9c\x92", "\x84\x9b\x92\x95\x92"), "aabb-bd- of 5"},
        {"non-keyed, a text's length wrong", changed(nonKeyed(), "\x08" + textC, "\x7f" + textC),
         "aabb-bdae of 5"},
        {"non-keyed, a letter of a class wrong",
         changed(nonKeyed(), "InstantMessage", "InstbntMessage"), "aabbacbdae of 5"},
    };
    for (const Case& test : cases)
        EXPECT_EQ(recovered(test.bytes), test.recovered) << test.what;
}

TEST(Recovery, WrongReferencesInventNothing) {
    const QByteArray whole = binary();
    const auto list = foundation::BinaryPropertyList::open(foundation::Data(whole));
    const auto objects = list->node(objectsArray(*list).value());
    const qsizetype first =
        whole.indexOf(QByteArray(objects.payload(), qsizetype(objects.count())));
    std::vector<qsizetype> instances;
    for (quint64 i = 0; i < objects.count(); ++i)
        if (list->node(list->element(objects, i)).kind() ==
            foundation::BinaryPropertyList::Kind::dictionary)
            instances.push_back(first + qsizetype(i));
    ASSERT_GT(instances.size(), 20);
    for (const qsizetype to : instances)
        for (const qsizetype from : instances) {
            QByteArray bytes = whole;
            bytes[to] = bytes[from];
            const std::string shown = recovered(bytes);
            for (const char* message : {"aa", "bb", "ac", "bd", "ae"})
                EXPECT_EQ(shown.find(message), shown.rfind(message)) << shown;
        }
}

TEST(Recovery, NumbersThatAreNoneLeaveTheListOfMessages) {
    const QByteArray whole = xml();
    const QByteArray begin = "<integer>";
    int complete = 0;
    for (qsizetype at = whole.indexOf(begin, whole.indexOf("$objects")); at >= 0;
         at = whole.indexOf(begin, at + 1)) {
        const std::string shown = recovered(QByteArray(whole).replace(at + begin.size(), 1, "x"));
        // Without the attributes that all have none of them is whole.
        EXPECT_TRUE(shown.ends_with(" of 5") || shown == "nothing") << at << ' ' << shown;
        complete += shown == "aabbacbdae of 5";
    }
    EXPECT_GE(complete, 5) << "an element of the list is known by its neighbours";
}

}  // namespace
}  // namespace vell::recovery
