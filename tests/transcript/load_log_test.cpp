// SPDX-License-Identifier: MIT
//
// The load log byte for byte: people send it in, and what it says must not drift.
#include "transcript/load_log.h"

#include <gtest/gtest.h>

#include "support/keyed_archive_writer.h"
#include "support/non_keyed_archive_writer.h"
#include "support/transcript_writer.h"
#include "transcript/archived_classes.h"
#include "transcript/byte_data.h"
#include "transcript/chat_log.h"
#include "transcript/chat_timeline.h"
#include "transcript/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using foundation::ClassRegistry;
using foundation::FileWrapper;
using support::KeyedArchiveWriter;
using support::NonKeyedArchiveWriter;

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
    log.logKeyedArchivedError(
        Error(QStringLiteral("D"), 7, QStringLiteral("text"),
              {Error(QStringLiteral("E"), 8), Error(QStringLiteral("F"), -9)}));
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

QByteArray keyedRoot(const std::function<support::Uid(KeyedArchiveWriter&)>& makeRoot) {
    KeyedArchiveWriter archive;
    archive.setTop(QStringLiteral("root"), makeRoot(archive));
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
    const auto log = tesselLoadLog();
    log->reset();
    Outcome result;
    try {
        TesselChatLog::fromData(bytes, {}, *foundation::Calendar::named("UTC"), *registry);
    } catch (const iChatTimeline::UnexpectedRootObject& error) {
        result.thrown = error.what() + (" " + error.object.className().toStdString());
    } catch (const std::exception& error) {
        result.thrown = error.what();
    }
    result.log = log->grabLog().toStdString();
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

const std::string kTryingNonKeyed = "\n---\n## Keyed loading failed, trying non-keyed\n\n";
const std::string kNonKeyedFailed = "NSUnarchiver.unarchiveObjectWithData failed.\n";
const std::string kThrowingOriginal = "Throwing original error\n";
const std::string kInit =
    "*** -[NSKeyedUnarchiver _initForReadingFromData:error:throwLegacyExceptions:]: ";

TEST(LoadLog, EachWayOfLoading) {
    const QByteArray dictionary =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.dictionary({}); });
    const QByteArray nilRoot = keyedRoot([](KeyedArchiveWriter&) { return support::Uid(); });
    const QByteArray textlessUrl =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.object({u"NSURL"_s}, {}); });
    const QByteArray empty =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.array({}); });
    NonKeyedArchiveWriter nonKeyedString;
    nonKeyedString.string(QStringLiteral("AIM"));
    NonKeyedArchiveWriter nonKeyedSet;
    nonKeyedSet.object({{"My\x07Set", 0}, {"NSSet", 0}, {"NSObject", 0}}, [&] {
        nonKeyedSet.group("I");
        nonKeyedSet.integer(0);
    });
    NonKeyedArchiveWriter nonKeyedEmpty;
    nonKeyedEmpty.array(0, [] {});

    const std::string isNonKeyed =
        kInit + "non-keyed archive cannot be decoded by NSKeyedUnarchiver";
    const std::string isNoList = kInit +
                                 "incomprehensible archive (0x74, 0x68, 0x69, 0x73, 0x20, "
                                 "0x69, 0x73, 0x20)";
    const std::string isTruncated = kInit +
                                    "incomprehensible archive (0x62, 0x70, 0x6c, 0x69, "
                                    "0x73, 0x74, 0x30, 0x30)";
    const std::string isEmpty =
        kInit + "data is empty; did you forget to send -finishEncoding to the NSKeyedArchiver?";
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
         keyedErrorLines(isNonKeyed) + kTryingNonKeyed, ""},
        {"no bytes", QByteArray(), Unarchiver::real,
         keyedErrorLines(isEmpty) + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
         keyedError(isEmpty)},
        {"17 bytes of text", "this is no plist\n", Unarchiver::real,
         keyedErrorLines(isNoList) + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
         keyedError(isNoList)},
        {"truncated property list", empty.chopped(1), Unarchiver::real,
         keyedErrorLines(isTruncated) + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
         keyedError(isTruncated)},
        {"keyed dictionary", dictionary, Unarchiver::real,
         dictionaryLines + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
         isNoArray + "NSDictionary"},
        {"keyed address without a text", textlessUrl, Unarchiver::real,
         dictionaryLines + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
         isNoArray + "NSURL"},
        {"keyed nil", nilRoot, Unarchiver::real,
         "No root object as unarchived!\n" + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
         "NoRootObjectError: the keyed archive has no root object"},
        {"non-keyed string", nonKeyedString.bytes(), Unarchiver::real,
         keyedErrorLines(isNonKeyed) + kTryingNonKeyed +
             "The non-keyed root object doesn't cast to [Any]: NSString\n" + kThrowingOriginal,
         keyedError(isNonKeyed)},
        {"non-keyed object of an unknown subclass", nonKeyedSet.bytes(), Unarchiver::real,
         keyedErrorLines(isNonKeyed) + kTryingNonKeyed +
             "The non-keyed root object doesn't cast to [Any]: My\\u{7}Set\n" + kThrowingOriginal,
         keyedError(isNonKeyed)},
        {"no unarchiver class", nonKeyedEmpty.bytes(), Unarchiver::missing,
         keyedErrorLines(isNonKeyed) + kTryingNonKeyed + "NSUnarchiver is not available.\n" +
             kThrowingOriginal,
         keyedError(isNonKeyed)},
        {"its name stands for no object class", nonKeyedEmpty.bytes(), Unarchiver::noObjectClass,
         keyedErrorLines(isNonKeyed) + kTryingNonKeyed +
             "NSUnarchiver cannot be cast to NSObject.\n" + kThrowingOriginal,
         keyedError(isNonKeyed)},
        {"it has no such method", nonKeyedEmpty.bytes(), Unarchiver::noMethod,
         keyedErrorLines(isNonKeyed) + kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal,
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

TEST(LoadLog, ADictionaryGivesWayToAReadableNonKeyedForm) {
    // No bytes are both; a registry whose unarchiver reads anything stands for them.
    ClassRegistry registry;
    foundation::registerValueClasses(registry);
    registerTranscriptClasses(registry);
    registry.add({.name = "NSUnarchiver", .unarchiveObjectWithData = [](const foundation::Data&) {
                      return test::root(QStringLiteral("AIM"), {});
                  }});
    const QByteArray bytes =
        keyedRoot([](KeyedArchiveWriter& archive) { return archive.dictionary({}); });
    const auto log =
        TesselChatLog::fromData(bytes, {}, *foundation::Calendar::named("UTC"), registry);
    EXPECT_EQ(log.serviceID().rawValue, QStringLiteral("AIM"));
    EXPECT_TRUE(tesselLoadLog()->grabLog().endsWith(QString::fromStdString(
        "The root object doesn't cast to [Any]: Optional<Any>\n" + kTryingNonKeyed)));
}

TEST(LoadLog, EndsWithRunningOutOfMemory) {
    ClassRegistry registry;
    registry.add({.name = "NSUnarchiver",
                  .unarchiveObjectWithData = [](const foundation::Data&) -> foundation::Value {
                      throw std::bad_alloc();
                  }});
    const auto load = [&registry] {
        return TesselChatLog::fromData(QByteArray("x"), std::nullopt,
                                       foundation::Calendar::current(), registry);
    };
    EXPECT_THROW(load(), std::bad_alloc);
    EXPECT_TRUE(tesselLoadLog()->grabLog().endsWith(QStringLiteral("\nOut of memory.\n")));
}

TEST(LoadLog, ClassesThatMayNotBeRead) {
    const auto transcriptWith = [](const char* key, const QStringList& classes) {
        return keyedRoot([&](KeyedArchiveWriter& archive) {
            const auto odd = archive.object(classes, {});
            const auto message =
                archive.object({QStringLiteral("InstantMessage"), QStringLiteral("NSObject")},
                               {{QString::fromUtf8(key), odd}});
            return archive.array({archive.string(QStringLiteral("AIM")), archive.string(QString()),
                                  archive.array({message})});
        });
    };
    const QStringList person{QStringLiteral("Person"), QStringLiteral("NSObject")};
    // Under a key that nobody asks for anything may stand.
    EXPECT_EQ(load(transcriptWith("Person", person), Unarchiver::real).thrown, "");

    const std::string isDisallowed =
        "value for key 'Sender' was of unexpected class 'Person'.\nAllowed classes are:\n {(\n"
        "    \"'InstantMessage'\",\n    \"'IMHandle'\",\n    \"'IMDirectlyObservableObject'\",\n"
        "    \"'Presentity'\",\n    \"'NSArray'\",\n    \"'NSMutableArray'\",\n"
        "    \"'NSDictionary'\",\n    \"'NSMutableDictionary'\",\n    \"'NSString'\",\n"
        "    \"'NSMutableString'\",\n    \"'NSAttributedString'\",\n"
        "    \"'NSMutableAttributedString'\",\n    \"'NSDate'\",\n    \"'NSCalendar'\",\n"
        "    \"'NSData'\",\n    \"'NSMutableData'\",\n    \"'NSNumber'\",\n    \"'NSURL'\",\n"
        "    \"'NSFont'\",\n    \"'NSParagraphStyle'\",\n    \"'NSMutableParagraphStyle'\",\n"
        "    \"'NSTextAttachment'\",\n    \"'NSGlyphInfo'\",\n    \"'NSColor'\",\n"
        "    \"'NSFileWrapper'\"\n)}";
    const std::string isUnknown =
        "*** -[NSKeyedUnarchiver decodeObjectForKey:]: cannot decode object of class (Foo) for key "
        "(Sender) because no class named \"Foo\" was found; the class needs to be defined in "
        "source "
        "code or linked in from a library (ensure the class is part of the correct target). If the "
        "class was renamed, use setClassName:forClass: to add a class translation mapping to "
        "NSKeyedUnarchiver";
    const std::string rest = kTryingNonKeyed + kNonKeyedFailed + kThrowingOriginal;
    EXPECT_EQ(load(transcriptWith("Sender", person), Unarchiver::real).log,
              keyedErrorLines(isDisallowed) + rest);
    EXPECT_EQ(load(transcriptWith("Sender", {QStringLiteral("Foo")}), Unarchiver::real).log,
              keyedErrorLines(isUnknown) + rest);
    const QString longName = u"Foo\x1b"_s + QString(100000, u'x');
    const std::string log = load(transcriptWith("Sender", {longName}), Unarchiver::real).log;
    EXPECT_LT(log.size(), 3000U);
    EXPECT_NE(log.find("class (Foo\\u{1B}xxx"), std::string::npos);
}

TEST(LoadLog, WithoutALogEverythingElseIsTheSame) {
    const auto shared = tesselLoadLog();
    ASSERT_TRUE(shared);
    const auto calendar = *foundation::Calendar::named("UTC");
    shared->reset();
    EXPECT_THROW(TesselChatLog::fromData(QByteArray("x"), {}, calendar), foundation::Error);
    EXPECT_TRUE(shared->grabLog().endsWith(QString::fromStdString(kThrowingOriginal)));

    shared->reset();
    setTesselLoadLog(nullptr);
    EXPECT_THROW(TesselChatLog::fromData(QByteArray("x"), {}, calendar), foundation::Error);
    setTesselLoadLog(shared);
    EXPECT_TRUE(shared->grabLog().isEmpty());
}

}  // namespace
}  // namespace vell
