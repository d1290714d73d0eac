// SPDX-License-Identifier: MIT
//
// Attributed strings of keyed archives in their three forms, and what hangs on them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/keyed_fixture.h"
#include "foundation/runs_text.h"
#include "writers/file_wrapper_writer.h"

namespace foundation::test {
namespace {

using testing::HasSubstr;
using writers::serializedFileWrapper;
using namespace std::string_literals;

class KeyedTextTest : public KeyedArchiveTest {
  protected:
    using Members = KeyedArchiveWriter::Members;

    Uid instance(const char* name, const Members& members) {
        return archive_.object(KeyedArchiveWriter::classes(name), members);
    }
    Uid attributes(const char* name, Uid value) {
        return archive_.dictionary(
            {{archive_.string("NSFont"), instance("NSFont", {})}, {archive_.string(name), value}});
    }
    Uid linked(const char* link) { return attributes("NSLink", archive_.string(link)); }
    Uid text(const Members& more, const char* name = "NSAttributedString") {
        Members members{{"NSString", archive_.string(QStringLiteral("a👍b"))}};
        members.insert(members.end(), more.begin(), more.end());
        return instance(name, members);
    }
    Uid attached(const Members& members, const char* name = "NSTextAttachment") {
        return text({{"NSAttributes", attributes("NSAttachment", instance(name, members))}});
    }
    Uid wrapper(const Inline& data) {
        return instance("NSFileWrapper", {{"NSFileWrapperData", data}});
    }
};

TEST_F(KeyedTextTest, RunsCoverTheTextWhateverTheArchiveSays) {
    const Uid a = linked("A");
    const Uid b = linked("B");
    const Uid plain = archive_.dictionary({});
    const Uid list = archive_.array({a, b, plain});
    const Uid numbered = instance("NSArray", {{"NS.object.0", a}, {"NS.object.1", b}});
    const auto split = [&](const std::string& info, const Uid dictionaries) {
        return text({{"NSAttributes", dictionaries},
                     {"NSAttributeInfo", archive_.direct(QByteArray::fromStdString(info))}});
    };
    const std::tuple<const char*, Uid, const char*> rows[] = {
        {"no attributes", text({}), "4"},
        {"one dictionary", text({{"NSAttributes", a}}), "4=A"},
        {"one dictionary without what counts", text({{"NSAttributes", plain}}), "4"},
        {"nil", text({{"NSAttributes", KeyedArchiveWriter::nil}}), "4"},
        {"no dictionary", text({{"NSAttributes", list}}), "4"},
        {"a dictionary that is no object", text({{"NSAttributes", Uid{4000}}}), "4"},
        {"in a subclass", text({{"NSAttributes", a}}, "NSTextStorage"), "4=A"},
        {"several", split("\1\0\2\1\1\2"s, list), "1=A 2=B 1"},
        {"equal neighbours stay two", split("\1\0\1\0\2\0"s, list), "1=A 1=A 2=A"},
        {"numbered dictionaries", split("\1\1\3\0"s, numbered), "1=B 3=A"},
        {"mutable data",
         text({{"NSAttributes", list},
               {"NSAttributeInfo", archive_.mutableData(QByteArray("\1\0\3\1", 4))}}),
         "1=A 3=B"},
        {"short", split("\1\0"s, list), "1=A 3"},
        {"long", split("\3\0\x09\1\1\0"s, list), "3=A 1=B"},
        {"longest", split("\xff\xff\xff\xff\xff\xff\xff\xff\x7f\0"s, list), "4=A"},
        {"beyond 63 bits", split("\1\1\xff\xff\xff\xff\xff\xff\xff\xff\xff\1\0"s, list), "1=B 3"},
        {"number in more bytes than it needs", split("\x84\x80\0\x81\0"s, list), "4=B"},
        {"empty runs", split("\0\0\4\1\0\0"s, list), "4=B"},
        {"number that breaks off", split("\1\0\1\x80"s, list), "1=A 3"},
        {"length without a number", split("\1\0\3"s, list), "1=A 3"},
        {"index out of range", split("\1\0\1\3\2\1"s, list), "1=A 3"},
        {"info that is no data",
         text({{"NSAttributes", list}, {"NSAttributeInfo", archive_.string("\1")}}), "4"},
        {"info with one dictionary", split("\4\0"s, a), "4"},
        {"dictionary that is text", split("\4\0"s, archive_.array({archive_.string("x")})), "4"},
        {"no text", instance("NSAttributedString", {{"NSAttributes", a}}), ""},
        {"text of another class",
         instance("NSAttributedString", {{"NSString", archive_.direct(7)}, {"NSAttributes", a}}),
         ""},
    };
    for (const auto& [name, uid, expected] : rows)
        EXPECT_EQ(runsOf(readRoot(uid)), expected) << name;
}

TEST_F(KeyedTextTest, OnlyTheAttributesThatCountAreDecodedAndChecked) {
    const Uid strange = archive_.object({"Strange", "NSObject"}, {});
    EXPECT_EQ(runsOf(readRoot(text({{"NSAttributes", attributes("NSColor", strange)}}))), "4");
    for (const char* name : {"NSLink", "NSAttachment", "FezInlineFilePath"})
        EXPECT_THAT(errorOfRoot(text({{"NSAttributes", attributes(name, strange)}})),
                    HasSubstr("(Strange) for key (NS.objects)"));
    EXPECT_THAT(
        errorOfRoot(text(
            {{"NSAttributes", attributes("NSLink", archive_.object({"Person", "NSObject"}, {}))}})),
        HasSubstr("unexpected class 'Person'"));
}

TEST_F(KeyedTextTest, SharesAttributesAndCutsTheirCycles) {
    const Uid a = archive_.dictionary({{archive_.string("NSLink"), archive_.string("A")}});
    const Value both =
        readRoot(archive_.array({text({{"NSAttributes", a}}), text({{"NSAttributes", a}})}));
    const auto runs = [&](std::size_t i) {
        return both.object<Array>()->elements.at(i).object<AttributedString>()->runs();
    };
    EXPECT_EQ(runs(0)[0].attributes, runs(1)[0].attributes);

    // The dictionary as an ordinary object too, before and after its attributes were read.
    const Uid styled = text({{"NSAttributes", a}});
    for (const auto& order :
         {archive_.array({a, styled, a}), archive_.array({styled, a, styled})}) {
        const auto elements = readRoot(order).object<Array>();
        for (const Value& element : elements->elements)
            EXPECT_TRUE(element.object<Dictionary>() || runsOf(element) == "4=A");
    }

    const Uid own = archive_.reserve();
    const Uid around = text({{"NSAttributes", own}});
    archive_.setObject(
        own, {"NSDictionary", "NSObject"},
        {{"NS.keys", std::vector{archive_.string("NSLink")}}, {"NS.objects", std::vector{around}}});
    EXPECT_EQ(runsOf(readRoot(around)), "4");
    EXPECT_EQ(readRoot(own).description(), QStringLiteral("{NSLink = a👍b;}"));
}

TEST_F(KeyedTextTest, FindsTheFileOfAnAttachment) {
    const QByteArray file =
        serializedFileWrapper({.name = QStringLiteral("a.png"), .contents = "PNG"});
    const QByteArray folder = serializedFileWrapper(
        {.name = QStringLiteral("d"), .children = std::vector<writers::FileDraft>{}});
    const Inline gif = archive_.direct(QByteArray("GIF"));
    const Inline type = archive_.string("com.compuserve.gif");
    const Inline data = archive_.direct(file);
    const Inline folderData = archive_.direct(folder);
    const struct {
        const char* form;
        Uid uid;
        /// Name of the wrapper, contents, type.
        const char* expected;
    } rows[] = {
        {"wrapper", attached({{"NSFileWrapper", wrapper(data)}}), "a.png - -"},
        {"wrapper of mutable data",
         attached({{"NSFileWrapper", wrapper(archive_.mutableData(file))}}), "a.png - -"},
        {"of a subclass", attached({{"NSFileWrapper", wrapper(data)}}, "NSTokenAttachment"),
         "a.png - -"},
        {"nothing", attached({{"NSFileWrapper", KeyedArchiveWriter::nil}}), "- - -"},
        {"wrapper without data", attached({{"NSFileWrapper", wrapper(KeyedArchiveWriter::nil)}}),
         "- - -"},
        {"wrapper of other bytes", attached({{"NSFileWrapper", wrapper(gif)}}), "- - -"},
        {"data in place of a wrapper", attached({{"NSFileWrapper", data}}), "- - -"},
        {"contents and type", attached({{"NS.contents", gif}, {"NS.fileType", type}}),
         "- GIF com.compuserve.gif"},
        {"contents of no bytes", attached({{"NS.contents", archive_.direct(QByteArray())}}),
         "-  -"},
        {"text for contents", attached({{"NS.contents", type}, {"NS.fileType", gif}}), "- - -"},
        {"file beside contents and type",
         attached({{"NSFileWrapper", wrapper(data)}, {"NS.contents", gif}, {"NS.fileType", type}}),
         "a.png GIF com.compuserve.gif"},
        {"folder beside contents only",
         attached({{"NSFileWrapper", wrapper(folderData)}, {"NS.contents", gif}}), "d GIF -"},
        {"folder beside contents and type",
         attached(
             {{"NSFileWrapper", wrapper(folderData)}, {"NS.contents", gif}, {"NS.fileType", type}}),
         "- GIF com.compuserve.gif"},
    };
    for (const auto& row : rows) {
        const auto attachment = attachmentOf(readRoot(row.uid));
        ASSERT_TRUE(attachment) << row.form;
        const auto& [wrapper, contents, fileType] =
            std::tie(attachment->fileWrapper, attachment->contents, attachment->fileType);
        const QString found =
            (wrapper ? wrapper->filename.value_or(QString()) : QStringLiteral("-")) + u' ' +
            (contents ? QString::fromLatin1(contents->view()) : QStringLiteral("-")) + u' ' +
            fileType.value_or(QStringLiteral("-"));
        EXPECT_EQ(found.toStdString(), row.expected) << row.form;
    }
}

}  // namespace
}  // namespace foundation::test
