// SPDX-License-Identifier: MIT
//
// The load log byte for byte: people send it in, and what it says must not drift.
#include "transcript/load_log.h"

#include <gtest/gtest.h>

#include "transcript/archived_classes.h"
#include "transcript/byte_data.h"
#include "transcript/chat_log.h"
#include "transcript/chat_timeline.h"
#include "transcript/fixture.h"
#include "writers/keyed_archive_writer.h"
#include "writers/non_keyed_archive_writer.h"
#include "writers/transcript_writer.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using foundation::ClassRegistry;
using foundation::FileWrapper;
using writers::KeyedArchiveWriter;
using writers::NonKeyedArchiveWriter;

TEST(LoadLog, OpenFile) {
    using Kind = FileWrapper::Kind;
    struct Row {
        const char* name;
        Kind kind;
        const char* fileName;
        const char* log;
    };
    const Row rows[] = {
        {"file", Kind::regularFile, "My chat.2009.ichat",
         "Opening new file [name not exposed]:\n  not-a-dir\n  FILE\n  not-a-symlink\n"
         "  wrapper has filename\n  Extension: .ichat\n---\n\n\n"},
        {"folder without a dot", Kind::directory, "chats",
         "Opening new file [name not exposed]:\n  DIRECTORY\n  not-a-file\n  not-a-symlink\n"
         "  wrapper has filename\n  No filename extension?\n---\n\n\n"},
        {"link that ends in a dot", Kind::symbolicLink, "chat.",
         "Opening new file [name not exposed]:\n  not-a-dir\n  not-a-file\n  SYMLINK\n"
         "  wrapper has filename\n  Extension: .\n---\n\n\n"},
        {"nameless", Kind::regularFile, nullptr,
         "Opening new file [name not exposed]:\n  not-a-dir\n  FILE\n  not-a-symlink\n"
         "  no filename?\n  No filename extension?\n---\n\n\n"},
        {"control characters", Kind::regularFile, "a.b\x1b[2J\n",
         "Opening new file [name not exposed]:\n  not-a-dir\n  FILE\n  not-a-symlink\n"
         "  wrapper has filename\n  Extension: .b\\u{1B}[2J\\u{A}\n---\n\n\n"},
    };
    TesselLoadLog log;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        log.writeln(u"of the file before");
        FileWrapper wrapper(row.kind);
        if (row.fileName) wrapper.filename = QString::fromUtf8(row.fileName);
        log.openFile(wrapper);
        EXPECT_EQ(log.grabLog().toStdString(), row.log);
    }
}

TEST(LoadLog, Dumps) {
    EXPECT_EQ(hexdump(QByteArrayView("b\0", 2), 16).toStdString(), "62 00  |b.|\n");
    EXPECT_EQ(hexdump(QByteArrayView("\x1f ~\x7f\x80\xff", 6), 4).toStdString(),
              "1f 20 7e 7f  |. ~.|\n80 ff  |..|\n");
    EXPECT_TRUE(chunk(QByteArrayView(), 16).empty());
    EXPECT_DEATH(static_cast<void>(chunk(QByteArrayView("b"), 0)), "chunks without bytes");

    // Of a long file the first 112 bytes, seven lines.
    TesselLoadLog log;
    log.logPreambleOfData(QByteArray(113, 'x'));
    const QString text = log.grabLog();
    EXPECT_EQ(text.count(u"|xxxxxxxxxxxxxxxx|"), 7);
    EXPECT_TRUE(text.startsWith(u"### Attempt to load from data w/ size: 113\n\n78 78 "));
    EXPECT_TRUE(text.endsWith(u"|xxxxxxxxxxxxxxxx|\n---\n\n"));
}

TEST(LoadLog, UnderlyingErrors) {
    using foundation::Error;
    TesselLoadLog log;
    log.logKeyedArchivedError(Error(u"D"_s, 7, u"text"_s, {Error(u"E"_s, 8), Error(u"F"_s, -9)}));
    EXPECT_EQ(log.grabLog().toStdString(),
              "## The NSKeyedArchived threw an exception:\n\n"
              "- Domain : D\n"
              "- Code   : 7\n"
              "- Error  : Error Domain=D Code=7 \"text\" UserInfo={NSDebugDescription=text}\n"
              "- Underlying errors:\n"
              "- Error: Error Domain=E Code=8 \"(null)\"\n"
              "- Error: Error Domain=F Code=-9 \"(null)\"\n");
}

/// An unarchiver class that can't do its work, or isn't there.
enum class Unarchiver { real, missing, noObjectClass, noMethod };

std::unique_ptr<ClassRegistry> registryWith(Unarchiver unarchiver) {
    auto registry = std::make_unique<ClassRegistry>();
    if (unarchiver == Unarchiver::real) {
        foundation::registerPlatformClasses(*registry);
    } else {
        foundation::registerValueClasses(*registry);
        foundation::ClassInfo info{.name = "NSUnarchiver",
                                   .isObjectClass = unarchiver != Unarchiver::noObjectClass};
        if (unarchiver != Unarchiver::missing) registry->add(std::move(info));
    }
    registerTranscriptClasses(*registry);
    return registry;
}

QByteArray keyedRoot(const std::function<writers::Uid(KeyedArchiveWriter&)>& makeRoot) {
    KeyedArchiveWriter archive;
    archive.setTop(u"root"_s, makeRoot(archive));
    return archive.binary();
}

struct Outcome {
    std::string log;  // without the preamble
    std::string preamble;
    std::string thrown;  // the error's text; empty: none
};

Outcome load(const QByteArray& bytes, Unarchiver unarchiver) {
    const auto registry = registryWith(unarchiver);
    const test::PrintedLines printed;
    TesselLoadLog log;
    Outcome result;
    try {
        TesselChatLog::fromData(bytes, {}, *foundation::Calendar::named("UTC"), &log, *registry);
    } catch (const iChatTimeline::UnexpectedRootObject& error) {
        result.thrown = error.what() + (" " + error.object.className().toStdString());
    } catch (const std::exception& error) {
        result.thrown = error.what();
    }
    result.log = log.grabLog().toStdString();
    TesselLoadLog preamble;
    preamble.logPreambleOfData(bytes);
    result.preamble = preamble.grabLog().toStdString();
    EXPECT_TRUE(result.log.starts_with(result.preamble));
    result.log.erase(0, result.preamble.size());
    return result;
}

std::string keyedError(const std::string& text, int code = 4864) {
    return "Error Domain=NSCocoaErrorDomain Code=" + std::to_string(code) + " \"" + text +
           "\" UserInfo={NSDebugDescription=" + text + "}";
}

std::string keyedErrorLines(const std::string& text, int code = 4864) {
    return "## The NSKeyedArchived threw an exception:\n\n"
           "- Domain : NSCocoaErrorDomain\n"
           "- Code   : " +
           std::to_string(code) + "\n- Error  : " + keyedError(text, code) + "\n";
}

const std::string tryingNonKeyed = "\n---\n## Keyed loading failed, trying non-keyed\n\n";
const std::string nonKeyedFailed = "NSUnarchiver.unarchiveObjectWithData failed.\n";
const std::string throwingOriginal = "Throwing original error\n";
const std::string initError =
    "*** -[NSKeyedUnarchiver _initForReadingFromData:error:throwLegacyExceptions:]: ";

TEST(LoadLog, EachWayOfLoading) {
    const QByteArray dictionary =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.dictionary({}); });
    const QByteArray nilRoot = keyedRoot([](KeyedArchiveWriter&) { return writers::Uid(); });
    const QByteArray textlessUrl =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.object({u"NSURL"_s}, {}); });
    const QByteArray empty =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.array({}); });
    NonKeyedArchiveWriter nonKeyedString;
    nonKeyedString.string(u"AIM"_s);
    NonKeyedArchiveWriter nonKeyedSet;
    nonKeyedSet.object({{"My\x07Set", 0}, {"NSSet", 0}, {"NSObject", 0}}, [&] {
        nonKeyedSet.group("I");
        nonKeyedSet.integer(0);
    });
    NonKeyedArchiveWriter nonKeyedEmpty;
    nonKeyedEmpty.array(0, [] {});

    const std::string isNonKeyed =
        initError + "non-keyed archive cannot be decoded by NSKeyedUnarchiver";
    const std::string isNoList = initError +
                                 "incomprehensible archive (0x74, 0x68, 0x69, 0x73, 0x20, "
                                 "0x69, 0x73, 0x20)";
    const std::string isTruncated = initError +
                                    "incomprehensible archive (0x62, 0x70, 0x6c, 0x69, "
                                    "0x73, 0x74, 0x30, 0x30)";
    const std::string isEmpty =
        initError + "data is empty; did you forget to send -finishEncoding to the NSKeyedArchiver?";
    const std::string isNoArray =
        "UnexpectedRootObject: the root object of the keyed archive is no array ";
    const std::string dictionaryLines = "The root object doesn't cast to [Any]: Optional<Any>\n";

    struct Row {
        const char* name;
        QByteArray bytes;
        Unarchiver unarchiver;
        std::string log;
        std::string thrown;
    };
    const Row rows[] = {
        {"keyed, all well", empty, Unarchiver::real, "", ""},
        {"non-keyed, all well", nonKeyedEmpty.bytes(), Unarchiver::real,
         keyedErrorLines(isNonKeyed) + tryingNonKeyed, ""},
        {"no bytes", QByteArray(), Unarchiver::real,
         keyedErrorLines(isEmpty) + tryingNonKeyed + nonKeyedFailed + throwingOriginal,
         keyedError(isEmpty)},
        {"17 bytes of text", "this is no plist\n", Unarchiver::real,
         keyedErrorLines(isNoList) + tryingNonKeyed + nonKeyedFailed + throwingOriginal,
         keyedError(isNoList)},
        {"truncated property list", empty.chopped(1), Unarchiver::real,
         keyedErrorLines(isTruncated) + tryingNonKeyed + nonKeyedFailed + throwingOriginal,
         keyedError(isTruncated)},
        {"keyed dictionary", dictionary, Unarchiver::real,
         dictionaryLines + tryingNonKeyed + nonKeyedFailed + throwingOriginal,
         isNoArray + "NSDictionary"},
        {"keyed address without a text", textlessUrl, Unarchiver::real,
         dictionaryLines + tryingNonKeyed + nonKeyedFailed + throwingOriginal, isNoArray + "NSURL"},
        {"keyed nil", nilRoot, Unarchiver::real,
         "No root object as unarchived!\n" + tryingNonKeyed + nonKeyedFailed + throwingOriginal,
         "NoRootObjectError: the keyed archive has no root object"},
        {"non-keyed string", nonKeyedString.bytes(), Unarchiver::real,
         keyedErrorLines(isNonKeyed) + tryingNonKeyed +
             "The non-keyed root object doesn't cast to [Any]: NSString\n" + throwingOriginal,
         keyedError(isNonKeyed)},
        {"non-keyed object of an unknown subclass", nonKeyedSet.bytes(), Unarchiver::real,
         keyedErrorLines(isNonKeyed) + tryingNonKeyed +
             "The non-keyed root object doesn't cast to [Any]: My\\u{7}Set\n" + throwingOriginal,
         keyedError(isNonKeyed)},
        {"no unarchiver class", nonKeyedEmpty.bytes(), Unarchiver::missing,
         keyedErrorLines(isNonKeyed) + tryingNonKeyed + "NSUnarchiver is not available.\n" +
             throwingOriginal,
         keyedError(isNonKeyed)},
        {"its name stands for no object class", nonKeyedEmpty.bytes(), Unarchiver::noObjectClass,
         keyedErrorLines(isNonKeyed) + tryingNonKeyed +
             "NSUnarchiver cannot be cast to NSObject.\n" + throwingOriginal,
         keyedError(isNonKeyed)},
        {"it has no such method", nonKeyedEmpty.bytes(), Unarchiver::noMethod,
         keyedErrorLines(isNonKeyed) + tryingNonKeyed + nonKeyedFailed + throwingOriginal,
         keyedError(isNonKeyed)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = load(row.bytes, row.unarchiver);
        EXPECT_EQ(outcome.log, row.log);
        EXPECT_EQ(outcome.thrown, row.thrown);
    }
}

TEST(LoadLog, PreamblesOfSmallFiles) {
    EXPECT_EQ(load(QByteArray(), Unarchiver::real).preamble,
              "### Attempt to load from data w/ size: 0\n\n  *DATA IS EMTPY*\n\n");
    EXPECT_EQ(load("this is no plist\n", Unarchiver::real).preamble,
              "### Attempt to load from data w/ size: 17\n\n"
              "74 68 69 73 20 69 73 20 6e 6f 20 70 6c 69 73 74  |this is no plist|\n"
              "0a  |.|\n---\n\n");
}

TEST(LoadLog, KeyedDictionaryFallsBackToNonKeyed) {
    // No bytes are valid in both forms, so this unarchiver reads anything.
    ClassRegistry registry;
    foundation::registerValueClasses(registry);
    registerTranscriptClasses(registry);
    registry.add({.name = "NSUnarchiver", .unarchiveObjectWithData = [](const foundation::Data&) {
                      return test::root(u"AIM"_s, {});
                  }});
    const QByteArray bytes =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.dictionary({}); });
    TesselLoadLog loadLog;
    const auto log =
        TesselChatLog::fromData(bytes, {}, *foundation::Calendar::named("UTC"), &loadLog, registry);
    EXPECT_EQ(log.serviceID().rawValue, u"AIM"_s);
    EXPECT_TRUE(loadLog.grabLog().endsWith(QString::fromStdString(
        "The root object doesn't cast to [Any]: Optional<Any>\n" + tryingNonKeyed)));
}

TEST(LoadLog, EndsWithRunningOutOfMemory) {
    ClassRegistry registry;
    registry.add({.name = "NSUnarchiver",
                  .unarchiveObjectWithData = [](const foundation::Data&) -> foundation::Value {
                      throw std::bad_alloc();
                  }});
    TesselLoadLog log;
    EXPECT_THROW(TesselChatLog::fromData(QByteArray("x"), std::nullopt,
                                         foundation::Calendar::current(), &log, registry),
                 std::bad_alloc);
    EXPECT_TRUE(log.grabLog().endsWith(u"\nOut of memory.\n"_s));
}

TEST(LoadLog, ClassesThatMayNotBeRead) {
    const auto transcriptWith = [](const char* key, const QStringList& classes) {
        return keyedRoot([&](KeyedArchiveWriter& archive) {
            const auto odd = archive.object(classes, {});
            const auto message = archive.object({u"InstantMessage"_s, u"NSObject"_s},
                                                {{QString::fromUtf8(key), odd}});
            return archive.array(
                {archive.string(u"AIM"_s), archive.string(QString()), archive.array({message})});
        });
    };
    const QStringList person{u"Person"_s, u"NSObject"_s};
    // Values of unread keys may be of any class.
    EXPECT_EQ(load(transcriptWith("Person", person), Unarchiver::real).thrown, "");

    const std::string rest = tryingNonKeyed + nonKeyedFailed + throwingOriginal;
    const std::string disallowed = load(transcriptWith("Sender", person), Unarchiver::real).log;
    EXPECT_NE(disallowed.find("value for key 'Sender' was of unexpected class 'Person'.\n"
                              "Allowed classes are:\n {(\n    \"'InstantMessage'\",\n"),
              std::string::npos);
    EXPECT_TRUE(disallowed.ends_with(rest));
    const QString longName = u"Foo\x1b"_s + QString(100000, u'x');
    const std::string unknown = load(transcriptWith("Sender", {longName}), Unarchiver::real).log;
    EXPECT_LT(unknown.size(), 3000U);
    EXPECT_NE(unknown.find("class (Foo\\u{1B}xxx"), std::string::npos);
    EXPECT_TRUE(unknown.ends_with(rest));
}

TEST(LoadLog, IsWrittenOnlyWhenHandedIn) {
    const auto shared = tesselLoadLog();
    ASSERT_TRUE(shared);
    const auto calendar = *foundation::Calendar::named("UTC");
    EXPECT_THROW(TesselChatLog::fromData(QByteArray("x"), {}, calendar), foundation::Error);
    EXPECT_TRUE(shared->grabLog().isEmpty());
    EXPECT_THROW(TesselChatLog::fromData(QByteArray("x"), {}, calendar, shared.get()),
                 foundation::Error);
    EXPECT_TRUE(shared->grabLog().endsWith(QString::fromStdString(throwingOriginal)));

    setTesselLoadLog(nullptr);
    EXPECT_FALSE(tesselLoadLog());
    setTesselLoadLog(shared);
}

}  // namespace
}  // namespace vell
