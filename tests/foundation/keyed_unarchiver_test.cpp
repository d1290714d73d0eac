// SPDX-License-Identifier: MIT
#include "foundation/keyed_unarchiver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/keyed_fixture.h"
#include "foundation/url.h"
#include "writers/file_wrapper_writer.h"

namespace foundation::test {
namespace {

using testing::HasSubstr;

class KeyedUnarchiverTest : public KeyedArchiveTest {};

// --- Errors in the platform's words ---

constexpr char init[] =
    "*** -[NSKeyedUnarchiver _initForReadingFromData:error:throwLegacyExceptions:]: ";

TEST_F(KeyedUnarchiverTest, RefusesWhatIsNoKeyedArchive) {
    const std::string prefix = std::string("4864 ") + init;
    EXPECT_EQ(errorOf(""), prefix +
                               "data is empty; did you forget to send -finishEncoding to the "
                               "NSKeyedArchiver?");
    for (const char* stream : {"\x04\x0bstreamtyped\x81", "\x04\x0btypedstream"})
        EXPECT_EQ(errorOf(stream),
                  prefix + "non-keyed archive cannot be decoded by NSKeyedUnarchiver");
    EXPECT_EQ(errorOf("\xe7\x01z"), prefix +
                                        "incomprehensible archive (0xffffffe7, 0x1, 0x7a, "
                                        "0x0, 0x0, 0x0, 0x0, 0x0)");
    const std::string cut =
        "incomprehensible archive (0x62, 0x70, 0x6c, 0x69, 0x73, 0x74, 0x30, "
        "0x30)";
    EXPECT_EQ(errorOf("bplist00"), prefix + cut);

    const auto withHeader = [&](const char* key, std::optional<Inline> value) {
        KeyedArchiveWriter archive;
        archive.setTop("root", archive.string("text"));
        archive.setHeader(key, std::move(value));
        return errorOf(archive.binary());
    };
    EXPECT_EQ(withHeader("$version", 99999), prefix + cut);
    EXPECT_EQ(withHeader("$top", std::nullopt), prefix + cut);
    EXPECT_EQ(withHeader("$objects", "none"), prefix + cut);
    EXPECT_EQ(withHeader("$archiver", "MyArchiver"), "no error but text");
}

TEST_F(KeyedUnarchiverTest, DistinguishesAMissingRootFromANilOne) {
    archive_.setTop("other", archive_.string("text"));
    EXPECT_EQ(errorOf(archive_.binary()), "4865 requested key: 'root'");
    EXPECT_TRUE(readRoot(KeyedArchiveWriter::nil).isNothing());
}

TEST_F(KeyedUnarchiverTest, RefusesUnknownClassesWhereTheyAreDecoded) {
    const Uid strange = archive_.object({"Strange", "NSObject"}, {});
    const std::string text =
        "because no class named \"Strange\" was found; the class needs to be defined in source "
        "code or linked in from a library (ensure the class is part of the correct target). If "
        "the class was renamed, use setClassName:forClass: to add a class translation mapping to "
        "NSKeyedUnarchiver";
    const auto asked = [&](const std::string& key) {
        return "4864 *** -[NSKeyedUnarchiver decodeObjectForKey:]: cannot decode object of class "
               "(Strange) for key (" +
               key + ") " + text;
    };
    EXPECT_EQ(errorOfRoot(strange), asked("root"));
    EXPECT_EQ(errorOfRoot(archive_.array({strange})), asked("NS.objects"));
    EXPECT_EQ(errorOfRoot(holder(strange)), asked("Held"));
    EXPECT_EQ(errorOfRoot(archive_.object({"Holder", "NSObject"}, {{"Unread", strange}})),
              "no error but (nil, nil)");
}

TEST_F(KeyedUnarchiverTest, RefusesClassesThatAreNotAllowed) {
    allowed_.assign({registry_.find("NSArray"), registry_.find("Holder")});
    const Uid person = archive_.object({"Person", "NSObject"}, {});
    const auto asked = [](const std::string& className, const std::string& key) {
        return "4864 value for key '" + key + "' was of unexpected class '" + className +
               "'.\nAllowed classes are:\n {(\n    \"'NSArray'\",\n    \"'Holder'\"\n)}";
    };
    EXPECT_EQ(errorOfRoot(person), asked("Person", "root"));
    EXPECT_EQ(errorOfRoot(archive_.array({archive_.array({person})})),
              asked("Person", "NS.objects"));
    EXPECT_EQ(errorOfRoot(holder(person)), asked("Person", "Held"));
    EXPECT_EQ(errorOfRoot(archive_.mutableString("a")), asked("NSMutableString", "root"));
    // Plain values among the objects are allowed.
    EXPECT_EQ(errorOfRoot(archive_.array({archive_.direct(7), archive_.direct(QByteArray("x"))})),
              "no error but (7, {length = 1, bytes = 0x78})");
}

TEST_F(KeyedUnarchiverTest, RechecksAnObjectThatWasDecodedUnchecked) {
    allowed_.assign({registry_.find("NSArray"), registry_.find("NSURL")});
    const Uid text = archive_.mutableString("http://example.org/");
    const Uid url = archive_.object({"NSURL", "NSObject"}, {{"NS.relative", text}});
    EXPECT_EQ(readRoot(archive_.array({url})).description(), "(http://example.org/)");
    EXPECT_THAT(errorOfRoot(archive_.array({url, text})), HasSubstr("class 'NSMutableString'"));
    // Nor does an object that was decoded as a part count as checked.
    allowed_.assign({registry_.find("NSArray"), registry_.find("NSTextAttachment")});
    const Uid file = archive_.object(
        {"NSFileWrapper", "NSObject"},
        {{"NSFileWrapperData", archive_.direct(writers::serializedFileWrapper({}))}});
    const Uid attachment =
        archive_.object({"NSTextAttachment", "NSObject"}, {{"NSFileWrapper", file}});
    EXPECT_THAT(errorOfRoot(archive_.array({attachment, file})),
                HasSubstr("class 'NSFileWrapper'"));
}

TEST_F(KeyedUnarchiverTest, ResolvesClassesByNameThenSuperclassesThenHints) {
    allowed_.push_back(registry_.find("NSColor"));
    const auto classOf = [&](const Uid record) {
        return readRoot(archive_.object({"unused"}, {{"$class", record}})).className();
    };
    const auto record = [&](const QStringList& classes, const QStringList& hints = {}) {
        return archive_.classRecord(classes, hints);
    };
    EXPECT_EQ(classOf(record({"NSCalendarDate", "NSDate", "NSObject"})), "NSDate");
    EXPECT_EQ(classOf(record({"CustomColor", "NSColor", "NSObject"})), "NSColor");
    EXPECT_EQ(classOf(record({"NSDate", "NSColor", "NSObject"})), "NSDate");
    EXPECT_EQ(classOf(record({"UIColor", "NSObject"}, {"NoColor", "NSColor"})), "NSColor");
}

TEST_F(KeyedUnarchiverTest, RefusesAnAllowedSubclassWithoutSecureCoding) {
    registry_.add({"Draft", registry_.find("NSArray"), ClassKind::array, false});
    EXPECT_EQ(errorOfRoot(archive_.object({"Draft", "NSArray", "NSObject"}, {})),
              "4864 This decoder will only decode classes that adopt NSSecureCoding. Class 'Draft' "
              "does not adopt it.");
}

TEST_F(KeyedUnarchiverTest, RefusesInstancesWithoutAClass) {
    const std::string missing = "4864 missing class information for object";
    const auto withClass = [&](const Inline& record) {
        return errorOfRoot(archive_.object({"unused"}, {{"$class", record}}));
    };
    EXPECT_EQ(withClass("NSArray"), missing);
    EXPECT_EQ(withClass(Uid{4000}), missing);
    EXPECT_EQ(withClass(archive_.string("NSArray")), missing);
    EXPECT_EQ(withClass(archive_.array({})), missing);
    EXPECT_EQ(errorOfRoot(archive_.classRecord({"NSArray"})), missing);
    EXPECT_EQ(errorOfRoot(archive_.direct(std::vector<Uid>{})), missing);
    EXPECT_EQ(
        errorOfRoot(Uid{4000}),
        "4864 *** -[NSKeyedUnarchiver decodeObjectForKey:]: the archive has no readable value "
        "for key (root)");
}

// --- Values ---

TEST_F(KeyedUnarchiverTest, FindsTheKeysOfAnApplicationClass) {
    const Uid inner = holder(archive_.string("inner"));
    const Uid outer = archive_.object({"Holder", "NSObject"},
                                      {{"$$Held", archive_.string("escaped")}, {"Held", inner}});
    EXPECT_EQ(readRoot(outer).description(), "((inner, nil), escaped)");
    // More keys than one layout holds, the key being the last.
    KeyedArchiveWriter::Members many;
    for (int i = 0; i < 40; ++i)
        many.emplace_back(QStringLiteral("key%1").arg(i), i);
    many.emplace_back("Held", archive_.string("found"));
    EXPECT_EQ(readRoot(archive_.object({"Holder", "NSObject"}, many)).description(),
              "(found, nil)");
    // Plain values in place of a reference.
    EXPECT_EQ(readRoot(holder(true)).description(), "(1, nil)");
    EXPECT_EQ(readRoot(holder("inline")).description(), "(inline, nil)");
    EXPECT_EQ(readRoot(holder(std::vector<Uid>{inner})).description(), "(nil, nil)");
}

TEST_F(KeyedUnarchiverTest, ReadsTheFormsOfAValue) {
    allowed_.push_back(registry_.find("NSString"));
    allowed_.push_back(registry_.find("NSSet"));
    allowed_.push_back(registry_.find("NSOrderedSet"));
    allowed_.push_back(registry_.find("NSNull"));
    const auto instance = [&](const char* name, const KeyedArchiveWriter::Members& members) {
        return archive_.object(KeyedArchiveWriter::classes(name), members);
    };
    const Uid a = archive_.string("a");
    const Uid b = archive_.string("b");
    const struct {
        const char* form;
        Uid uid;
        const char* description;
    } rows[] = {
        {"string of another coder", instance("NSString", {{"NS.bytes", QByteArray("\xc3\xa9")}}),
         "é"},
        {"string without characters", instance("NSString", {}), ""},
        {"mutable string that reads \"$null\"", archive_.mutableString("$null"), "$null"},
        {"boolean of another coder", instance("NSNumber", {{"NS.boolval", 1}}), "1"},
        {"integer of another coder", instance("NSNumber", {{"NS.intval", -5}}), "-5"},
        {"real of another coder", instance("NSNumber", {{"NS.dblval", 0.5}}), "0.5"},
        {"negative integer", archive_.direct(-2), "-2"},
        {"data in an instance", archive_.mutableData("xy"), "{length = 2, bytes = 0x7879}"},
        {"date", archive_.date(-0.5), "2000-12-31 23:59:59 +0000"},
        {"date of an integer", instance("NSDate", {{"NS.time", 60}}), "2001-01-01 00:01:00 +0000"},
        {"address with a base", archive_.url("../c?d", archive_.url("http://h/a/b")),
         "http://h/c?d"},
        {"address without text", instance("NSURL", {}), "<NSURL>"},
        {"set", instance("NSMutableSet", {{"NS.objects", std::vector<Uid>{b, a}}}), "{(b, a)}"},
        {"counted set",
         instance("NSCountedSet",
                  {{"NS.count", 2}, {"NS.object1", b}, {"NS.count1", 7}, {"NS.object0", a}}),
         "{(a, b)}"},
        {"ordered set", instance("NSOrderedSet", {{"NS.object.0", b}, {"NS.object.1", a}}),
         "{(b, a)}"},
        {"numbered elements with a gap",
         instance("NSArray", {{"NS.object.0", a}, {"NS.object.2", b}}), "(a)"},
        {"dictionary with more keys than values",
         instance("NSDictionary",
                  {{"NS.keys", std::vector<Uid>{a, b}}, {"NS.objects", std::vector<Uid>{b}}}),
         "{a = b;}"},
        {"dictionary of another coder",
         instance("NSDictionary", {{"NS.key.0", a}, {"NS.object.0", b}}), "{a = b;}"},
        {"null object", instance("NSNull", {}), "<NSNull>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readRoot(row.uid).description().toStdString(), row.description) << row.form;
}

TEST_F(KeyedUnarchiverTest, ReturnsDataAsSlicesOfTheFile) {
    const Data file(withRoot(archive_.array(
        {archive_.direct(QByteArray(5000, 'x')), archive_.mutableData(QByteArray(5000, 'y'))})));
    const Value root = KeyedUnarchiver::unarchivedObject(file, allowed_, registry_);
    for (const Value& element : root.object<Array>()->elements) {
        ASSERT_TRUE(element.data());
        EXPECT_EQ(element.data()->size(), 5000);
        EXPECT_TRUE(element.data()->begin() > file.begin() && element.data()->end() < file.end());
    }
}

TEST_F(KeyedUnarchiverTest, SharesObjectsAndCutsCycles) {
    const Uid shared = archive_.array({archive_.string("x")});
    const Value root = readRoot(archive_.array({shared, shared}));
    const auto& twins = root.object<Array>()->elements;
    EXPECT_EQ(twins[0].object<Array>(), twins[1].object<Array>());

    const Uid self = archive_.reserve();
    archive_.setObject(self, {"NSArray", "NSObject"},
                       {{"NS.objects", std::vector<Uid>{self, archive_.string("y"), self}}});
    EXPECT_EQ(readRoot(self).description(), "(nil, y, nil)");
    const Uid address = archive_.reserve();
    archive_.setObject(address, {"NSURL", "NSObject"},
                       {{"NS.base", address}, {"NS.relative", archive_.string("r")}});
    EXPECT_EQ(readRoot(address).description(), "r");
    // An instance that is its own class.
    const Uid own = archive_.reserve();
    archive_.setObject(own, {"NSArray"}, {{"$class", own}, {"$classname", "NSArray"}});
    EXPECT_EQ(readRoot(own).description(), "()");
}

}  // namespace
}  // namespace foundation::test
