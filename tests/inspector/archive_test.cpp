// SPDX-License-Identifier: MIT
#include "inspector/archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QRegularExpression>

#include "foundation/plist/binary_property_list.h"
#include "inspector/archive_text.h"
#include "writers/keyed_archive_writer.h"
#include "writers/non_keyed_archive_writer.h"
#include "writers/transcript_writer.h"

namespace vell::inspector {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using writers::KeyedArchiveWriter;
using writers::NonKeyedArchiveWriter;

QByteArrayList lines(const QByteArray& bytes) {
    QByteArray text;
    const QString problem =
        writeArchive(foundation::Data(bytes), [&](QByteArrayView part) { text.append(part); });
    if (!problem.isEmpty()) text.append("! " + problem.toUtf8() + '\n');
    text.chop(1);
    return text.split('\n');
}

std::vector<std::string> tail(const QByteArray& bytes, qsizetype from) {
    std::vector<std::string> result;
    for (const QByteArray& line : lines(bytes).mid(from))
        result.push_back(line.toStdString());
    return result;
}

QByteArray archivedByItself(const std::function<void(NonKeyedArchiveWriter&)>& write) {
    NonKeyedArchiveWriter archive;
    write(archive);
    return archive.bytes();
}

/// The parts from one index on.
std::vector<std::string> parts(Archive& archive, const Entry& whole, quint64 first) {
    std::vector<std::string> result;
    archive.visitParts(whole, first, [&](const Entry& part) {
        result.push_back((part.step + u" "_s + part.value).toStdString());
        return true;
    });
    return result;
}

TEST(NonKeyedArchive, EachKindOfValueIsALine) {
    struct Case {
        const char* what;
        std::function<void(NonKeyedArchiveWriter&)> write;
        std::vector<std::string> shown;
    };
    const Case cases[] = {
        {"signed and unsigned",
         [](auto& archive) {
             archive.group("iISlC");
             for (const int value : {-1, -1, -1, -1})
                 archive.integer(value);
             archive.raw("\xff");
         },
         {"root[0] = -1 (i)", "root[1] = 4294967295 (I)", "root[2] = 65535 (S)", "root[3] = -1 (l)",
          "root[4] = 255 (C)"}},
        {"reals",
         [](auto& archive) { archive.group("fd"), archive.real32(1.5), archive.real64(0.1); },
         {"root[0] = 1.5 (f)", "root[1] = 0.1 (d)"}},
        {"bytes",
         [](auto& archive) { archive.group("[3c]"), archive.raw("\x01\x02\xff"); },
         {"root[0] = <3 bytes: 01 02 ff>"}},
        {"texts that are none",
         [](auto& archive) {
             archive.group("++"), archive.unsharedString("a\"b"), archive.unsharedString("\xff");
         },
         {"root[0] = \"a\\\"b\" (+)", "root[1] = <1 byte: ff> (+)"}},
        {"arrays in structures",
         [](auto& archive) {
             archive.group("{P=i[2i]}i");
             for (const int value : {1, 2, 3, 4})
                 archive.integer(value);
         },
         {"root[0] = struct of 2", "root[0][0] = 1 (i)", "root[0][1] = array of 2",
          "root[0][1][0] = 2 (i)", "root[0][1][1] = 3 (i)", "root[1] = 4 (i)"}},
        {"C strings in arrays",
         [](auto& archive) {
             archive.group("i[2*]*");
             archive.integer(7);
             for (const char* text : {"a", "b", "a"})
                 archive.cString(text);
         },
         {"root[0] = 7 (i)", "root[1] = array of 2", "root[1][0] = #0 (*)", "root[1][1] = #1 (*)",
          "root[2] = #0 (*)", "#0 @25 = \"a\" (*)", "#1 @29 = \"b\" (*)"}},
        {"C strings, one of them twice",
         [](auto& archive) { archive.group("**"), archive.cString("x"), archive.cString("x"); },
         {"root[0] = #0 (*)", "root[1] = #0 (*)", "#0 @20 = \"x\" (*)"}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        const QByteArray bytes = archivedByItself(test.write);
        std::vector<std::string> shown = tail(bytes, 1);
        EXPECT_EQ(shown, test.shown);
    }
}

TEST(NonKeyedArchive, ObjectsAreReadFromAnyPartOn) {
    const QByteArray bytes = archivedByItself([](NonKeyedArchiveWriter& archive) {
        archive.object("Outer", [&] {
            archive.string(u"one"_s);
            const int inner = archive.object("Inner", [&] { archive.string(u"two"_s); });
            archive.reference(inner);
            archive.group("i");
            archive.integer(5);
        });
        archive.string(u"three"_s);
    });
    Opening opening = openArchive(foundation::Data(bytes));
    ASSERT_TRUE(opening.archive && opening.problem.isEmpty());
    Archive& archive = *opening.archive;
    const Entry outer = archive.object(0);
    EXPECT_EQ(outer.value, u"Outer");
    EXPECT_EQ(outer.count, 4);
    const auto all = parts(archive, outer, 0);
    ASSERT_EQ(all.size(), 4);
    EXPECT_EQ(all[1].substr(4), all[2].substr(4));
    EXPECT_EQ(all[3], "[3] 5");
    for (quint64 first = 0; first < 4; ++first)
        EXPECT_EQ(parts(archive, outer, first),
                  std::vector(all.begin() + std::ptrdiff_t(first), all.end()));
    EXPECT_EQ(parts(archive, archive.root(), 1).size(), 1);
    EXPECT_TRUE(parts(archive, archive.root(), 2).empty());
}

TEST(NonKeyedArchive, DamagedOnesAreReadUpToTheBreak) {
    const QByteArray whole = archivedByItself([](NonKeyedArchiveWriter& archive) {
        archive.object("Outer", [&] {
            archive.string(u"one"_s);
            archive.object("Inner", [&] { archive.string(u"two"_s); });
        });
    });
    const QByteArrayList shown = lines(whole);
    for (qsizetype size = whole.size() - 1; size > 20; --size) {
        const QByteArrayList cut = lines(whole.first(size));
        EXPECT_TRUE(cut.last().startsWith("! it can't be read on after byte ")) << size;
        EXPECT_LE(cut.last().mid(cut.last().lastIndexOf(' ') + 1).toLongLong(), size);
        // Nothing is shown that the whole one hasn't.
        for (const QByteArray& line : cut.first(cut.size() - 1))
            EXPECT_TRUE(shown.contains(line) || line.endsWith(' ') || line.endsWith("Outer") ||
                        line.contains('@'))
                << line.toStdString();
    }
    EXPECT_EQ(lines("no archive").last(), "! it begins like no archive");
    for (int further = 3; further < 9; ++further) {  // behind its class and that one's parent
        const QByteArray ahead = archivedByItself([&](NonKeyedArchiveWriter& archive) {
            archive.reference(archive.string(u"one"_s) + further);
        });
        EXPECT_TRUE(lines(ahead).last().startsWith("! it can't be read on")) << further;
    }
}

TEST(KeyedArchive, UnknownClassesKeysAndSharedValuesAreShown) {
    KeyedArchiveWriter archive;
    const auto shared = archive.direct(std::vector<writers::Uid>{});
    const auto odd = archive.object({u"Odd"_s}, {{u"ke y"_s, 1.5},
                                                 {u"data"_s, QByteArray("\x00\x01", 2)},
                                                 {u"self"_s, writers::Uid{2}},
                                                 {u"snow"_s, u"\u2603"_s},
                                                 {u"list"_s, shared}});
    archive.setTop(u"root"_s, odd);
    Opening opening = openArchive(foundation::Data(archive.binary()));
    ASSERT_TRUE(opening.archive);
    // The objects aren't among the rest.
    EXPECT_EQ(parts(*opening.archive, opening.archive->root(), 0).size(),
              opening.archive->root().count);
    QStringList seen;
    for (quint64 number = 0; number < opening.archive->objectCount(); ++number) {
        const Entry object = opening.archive->object(number);
        if (object.value != u"Odd") continue;
        opening.archive->visitParts(object, 0, [&](const Entry& part) {
            seen += part.step + u'=' + QString::fromLatin1(part.type) +
                    (part.target ? u'#' + QString::number(*part.target) : part.value);
            return true;
        });
        EXPECT_GT(object.offset, 8);
    }
    EXPECT_TRUE(seen.contains(u".ke y=real1.5"_s)) << seen.join(u'|').toStdString();
    EXPECT_TRUE(seen.contains(u".data=data"_s));
    EXPECT_TRUE(seen.contains(u".snow=text\u2603"_s));
    EXPECT_TRUE(seen.contains(u".self=reference#2"_s));
}

TEST(KeyedArchive, AContainerUnderTwoKeysIsWrittenOnce) {
    using foundation::BinaryPropertyList;
    KeyedArchiveWriter archive;
    const std::vector words(3, archive.string(u"word"_s));
    archive.setTop(u"root"_s, archive.object({u"Odd"_s}, {{u"a"_s, words}, {u"b"_s, words}}));
    QByteArray bytes = archive.binary();
    const auto list = BinaryPropertyList::open(foundation::Data(bytes));
    for (BinaryPropertyList::Ref ref = 0; ref < list->objectCount(); ++ref) {
        const auto node = list->node(ref);
        if (node.kind() != BinaryPropertyList::Kind::dictionary || node.count() != 3) continue;
        if (list->node(list->value(node, 0)).kind() != BinaryPropertyList::Kind::array) continue;
        const qsizetype values = node.payload() - list->data().begin() + 3;
        bytes[values + 1] = bytes[values];
    }
    const QByteArray shown = lines(bytes).join('\n');
    EXPECT_TRUE(shown.contains(".b = array of 3, the same as above\n")) << shown.toStdString();
    EXPECT_EQ(shown.count("[2] = "), 1);
}

TEST(KeyedArchive, BothFormsShowTheSame) {
    const writers::Transcript transcript{
        u"AIM"_s,
        {{u"ann"_s}, {u"bob"_s}},
        {1},
        {{.sender = 0, .date = 5, .body = {writers::words(u"\u2603 \"x\"\n"_s)}}}};
    const auto stripped = [](const QByteArray& bytes) {
        return QString::fromUtf8(lines(bytes).mid(1).join('\n'))
            .remove(QRegularExpression(u"(?<=\\d) @\\d+"_s));
    };
    EXPECT_EQ(stripped(writers::keyedTranscript(transcript)),
              stripped(writers::keyedTranscript(transcript, {.xml = true})));
}

}  // namespace
}  // namespace vell::inspector
