// SPDX-License-Identifier: MIT
//
// Well-formed non-keyed archives.
#include <gtest/gtest.h>

#include "foundation/runs_text.h"
#include "foundation/unarchiver_fixture.h"
#include "writers/file_wrapper_writer.h"

namespace foundation::test {
namespace {

using namespace std::string_literals;

Piece number(const char* type, QByteArrayView bytes) {
    return obj("NSNumber", {[=](auto& a) {
                                a.group("*");
                                a.cString(type);
                            },
                            raw(type, bytes)});
}

Piece real(char type, double value) {
    return [=](auto& a) {
        a.group(QByteArray(1, type));
        type == 'f' ? a.real32(value) : a.real64(value);
    };
}

TEST(Unarchiver, RebuildsValueClassesInBothByteOrders) {
    const Piece longText = [](auto& a) { a.string(QString(40000, u'x')); };
    const Piece wide = [](auto& a) { a.number('q', -70000); };
    const Piece medium = [](auto& a) { a.number('q', 300); };
    const std::tuple<const char*, Piece, std::string> rows[] = {
        {"string", str("zoé 👍"), "NSString zoé 👍"},
        {"empty string", obj("NSMutableString", {raw("+", "\0"s)}), "NSString "},
        {"byte-order marks", obj("NSString", {raw("+", "\7\uFEFF\uFEFFx")}),
         "NSString \uFEFF\uFEFFx"},
        {"long string", longText, "NSString " + std::string(40000, 'x')},
        {"broken UTF-8", obj("NSString", {raw("+", "\x02|\xff")}), "NSString |\uFFFD"},
        {"string of another version", obj("NSString", {raw("i", "\1"), raw("*", "\x84\x84\1o")}),
         "NSString o"},
        {"16 bits", medium, "NSNumber 300"},
        {"32 bits", wide, "NSNumber -70000"},
        {"small integer", number("i", "\x92"), "NSNumber -110"},
        {"unsigned 64 bits", number("Q", "\xfd"), "NSNumber 18446744073709551613"},
        {"unsigned 32 bits", number("I", "\xff"), "NSNumber 4294967295"},
        {"unsigned 16 bits", number("S", "\xf4"), "NSNumber 65524"},
        {"character", number("c", "\x80"), "NSNumber -128"},
        {"boolean", number("B", "\1"), "NSNumber 1"},
        {"real", obj("NSNumber", {real('d', 0.1)}), "NSNumber 0.1"},
        {"whole real", obj("NSNumber", {real('d', 41)}), "NSNumber 41"},
        {"single real", obj("NSNumber", {real('f', 2.25)}), "NSNumber 2.25"},
        {"date", obj("NSDate", {real('d', 0.25)}), "NSDate 2001-01-01 00:00:00 +0000"},
        {"date in integer form", obj("NSDate", {real('d', 60)}),
         "NSDate 2001-01-01 00:01:00 +0000"},
        {"date without an end", obj("NSDate", {raw("d", "\x83\xff\xff\xff\xff\xff\xff\xff\xff")}),
         "NSDate nan"},
        {"data", data("abc"), "NSData {length = 3, bytes = 0x616263}"},
        {"data of no bytes", data(""), "NSData {length = 0, bytes = 0x}"},
        {"data of no bytes and no group", obj("NSMutableData", {raw("i", "\0"s)}),
         "NSData {length = 0, bytes = 0x}"},
        {"url", obj("NSURL", {raw("c", "\0"s), str("http://x.org/")}), "NSURL http://x.org/"},
        {"url with a base",
         obj("NSURL",
             {raw("c", "\1"), obj("NSURL", {raw("c", "\0"s), str("http://x/a/b")}), str("../c")}),
         "NSURL http://x/c"},
        {"array with nil", array({str("a"), nil(), array({}, "NSMutableArray")}),
         "NSArray (a, nil, ())"},
        {"set", obj("NSSet", {raw("I", "\1"), str("a")}), "NSSet {(a)}"},
        {"dictionary", dictionary({str("k"), nil(), str("d"), dictionary({})}),
         "NSDictionary {k = nil; d = {};}"},
        {"opaque class", obj("NSFont", {raw("f", "\x0c")}), "NSFont <NSFont>"},
    };
    for (const auto& [name, piece, expected] : rows) {
        for (const auto order : {Order::little, Order::big})
            EXPECT_EQ(described(read(archived(piece, order))), expected) << name;
    }
}

TEST(Unarchiver, CollectionsHoldTheElementsThatExist) {
    const auto elements = [](QByteArrayView count) {
        return described(obj("NSArray", {raw("i", count), str("a"), str("b")}));
    };
    EXPECT_EQ(elements("\2"), "NSArray (a, b)");
    EXPECT_EQ(elements("\1"), "NSArray (a)") << "what a subclass has added is no element";
    EXPECT_EQ(elements("\5"), "NSArray (a, b)");
    EXPECT_EQ(elements("\xff"), "nil nil") << "negative";
    EXPECT_EQ(elements("\x81\xff\x7f"), "nil nil") << "more than the archive has bytes";
    EXPECT_EQ(described(obj("NSDictionary", {raw("i", "\2"), str("k"), str("v"), str("k2")})),
              "NSDictionary {k = v;}");
}

TEST(Unarchiver, ApplicationClassesDecodeByPosition) {
    struct Row {
        const char* name;
        Pieces pieces;
        std::string first;
        std::optional<quint32> number;
        std::string second;
    };
    const Piece s = str("s");
    const Row rows[] = {
        {"plain", {s, raw("I", "\7"), s}, "s", 7, "s"},
        {"unsigned stored as a small negative", {nil(), raw("I", "\xff")}, "nil", ~0u, "nil"},
        {"integer of another type", {nil(), raw("c", "\xff"), s}, "nil", ~0u, "s"},
        {"one group of several values", {raw("@i@", "\x85\5\x85")}, "nil", 5, "nil"},
        {"real for an integer", {s, raw("d", "\7"), s}, "s", {}, "s"},
        {"integer for an object", {raw("i", "\7"), raw("i", "\10")}, "nil", 8, "nil"},
        {"object for an integer", {s, s, s}, "s", {}, "s"},
        {"array", {s, raw("[3i]", "\1\2\3"), s}, "s", {}, "s"},
        {"struct", {s, raw("{_NSSize=ff}", "\1\2"), s}, "s", {}, "s"},
        {"no values", {}, "nil", {}, "nil"},
    };
    for (const auto& row : rows) {
        const auto probe = read(archived(obj("Probe", row.pieces))).object<Probe>();
        ASSERT_TRUE(probe) << row.name;
        EXPECT_EQ(probe->first.description().toStdString(), row.first) << row.name;
        EXPECT_EQ(probe->number, row.number) << row.name;
        EXPECT_EQ(probe->second.description().toStdString(), row.second) << row.name;
    }
}

TEST(Unarchiver, ReadsUnknownClassesAsTheirNearestKnownSuperclass) {
    // Every type there is, with objects, a class and a C string that take numbers on the way.
    const Piece everything = [](auto& a) {
        a.group("{?=[2@][2{A=#B}]*:%}cCsSiIlLqQfd[2d][3c]");
        a.objectValue(a.classes("Inner"), [&] { a.string({}); });
        a.raw("\x85\x85\1\x85\1\x84");
        a.sharedString("text");
        a.sharedString("selector:");
        a.raw(QByteArray("\x85") + QByteArray(14, '\5') + "abc");
    };
    const auto rebuilt = [&](const NonKeyedArchiveWriter::ClassChain& chain, const Piece& own) {
        int inner = 0;
        const Piece object = obj(chain, {own, named(inner, everything)});
        return described(array({object, ref(inner), str("after")}));
    };
    EXPECT_EQ(rebuilt({{"Mine", 3}}, nil()), "NSArray (<Mine>, <Inner>, after)");
    EXPECT_EQ(rebuilt({{"Mine", 3}, {"NSFont", 30}, {"NSObject", 0}}, nil()),
              "NSArray (<Mine>, <Inner>, after)");
    EXPECT_EQ(rebuilt({{"Mine", 3}, {"Other", 1}, {"NSString", 1}}, raw("+", "\1t")),
              "NSArray (t, <Inner>, after)");
    EXPECT_EQ(rebuilt({{"Mine", 3}, {"Probe", 0}}, nil()), "NSArray (<Probe>, <Inner>, after)");
    EXPECT_EQ(rebuilt({{QByteArray("Probe\0", 6), 0}}, nil()),
              "NSArray (<Probe\0>, <Inner>, after)"s);
}

TEST(Unarchiver, SharesWhatIsReferredToTwiceAndLeavesOutCycles) {
    int once = 0;
    int pairs = 0;
    const auto shared = read(archived(array({named(once, obj("Probe")), ref(once),
                                             named(pairs, dictionary({})), ref(pairs)})))
                            .object<Array>();
    ASSERT_TRUE(shared);
    EXPECT_EQ(shared->elements[0].object<Probe>(), shared->elements[1].object<Probe>());
    EXPECT_EQ(shared->elements[2].object<Dictionary>(), shared->elements[3].object<Dictionary>());

    int self = 0;
    EXPECT_EQ(described(named(self, array({ref(self), obj("Probe", {ref(self)})}))),
              "NSArray (nil, <Probe>)");
    // A dictionary is made on first use; what was unfinished when it ended must stay absent.
    int outer = 0;
    const Piece inside = obj("Unknown", {named(pairs, dictionary({str("k"), ref(outer)}))});
    EXPECT_EQ(described(array({named(outer, array({inside})), ref(pairs)})),
              "NSArray ((<Unknown>), {k = nil;})");
}

Piece run(int number, quint32 length) {
    return [=](auto& a) {
        a.group("iI");
        a.integer(number);
        a.integer(static_cast<qint32>(length));
    };
}

TEST(Unarchiver, CutsAttributedStringsIntoTheirRuns) {
    const auto linked = [](const char* link) {
        return dictionary({str("NSFont"), obj("NSFont"), str("NSLink"), str(link)});
    };
    const Piece a = linked("A");
    const Piece b = linked("B");
    const std::tuple<const char*, Pieces, const char*> rows[] = {
        {"covered", {run(1, 1), a, run(2, 2), b, run(1, 1)}, "1=A 2=B 1=A"},
        {"equal neighbours stay two", {run(1, 2), a, run(1, 2)}, "2=A 2=A"},
        {"short", {run(1, 1), a}, "1=A 3"},
        {"long", {run(1, 3), a, run(2, 9), b, run(1, 1)}, "3=A 1=B"},
        {"longest", {run(1, 0xffffffff), a}, "4=A"},
        {"empty runs", {run(1, 0), a, run(1, 4), run(1, 0)}, "4=A"},
        {"number 0", {run(0, 2), run(1, 2), a}, "2 2=A"},
        {"number 7", {run(7, 2), run(1, 2), a}, "2 2=A"},
        {"dictionary behind a wrong number", {run(7, 2), b, run(1, 2), a}, "2 2=A"},
        {"missing dictionary", {run(1, 2), run(2, 2), a}, "2 2=A"},
        {"no dictionary", {run(1, 2), nil(), run(2, 2), a}, "2 2=A"},
        {"no attribute that counts", {run(1, 4), dictionary({str("NSFont"), a})}, "4"},
        {"no runs", {}, "4"},
    };
    for (const auto& [name, runs, expected] : rows) {
        Pieces pieces = runs;
        pieces.insert(pieces.begin(), str("a👍b"));
        EXPECT_EQ(runsOf(read(archived(obj("NSMutableAttributedString", pieces)))), expected)
            << name;
    }
    EXPECT_EQ(runsOf(read(archived(obj("NSAttributedString", {nil(), run(1, 4), a})))), "");

    int attributes = 0;
    const auto shared =
        read(archived(array({obj("NSAttributedString", {str("x"), run(1, 1), named(attributes, a)}),
                             obj("NSAttributedString", {str("y"), run(1, 1), ref(attributes)})})))
            .object<Array>();
    ASSERT_TRUE(shared);
    EXPECT_EQ(runsOf(shared->elements[1]), "1=A");
}

/// An attachment of these pieces, as the archive's only attribute.
QByteArray withAttachment(const Pieces& pieces) {
    return archived(obj("NSAttributedString",
                        {str("\uFFFC"), run(1, 1),
                         dictionary({str("NSAttachment"), obj("NSTextAttachment", pieces)})}));
}

TEST(Unarchiver, FindsTheFileOfAnAttachmentByItsClass) {
    using writers::serializedFileWrapper;
    const QByteArray file =
        serializedFileWrapper({.name = QStringLiteral("a.png"), .contents = "PNG"});
    const QByteArray folder = serializedFileWrapper(
        {.name = QStringLiteral("d"), .children = std::vector<writers::FileDraft>{}});
    const auto wrapper = [](const Piece& serialized) { return obj("NSFileWrapper", {serialized}); };
    const Data bytes(withAttachment({obj("NSTextAttachmentCell"), wrapper(data(file))}));
    const auto found = attachmentOf(unarchiveObjectWithData(bytes, registry()).object);
    ASSERT_TRUE(found && found->fileWrapper);
    EXPECT_EQ(found->fileWrapper->filename, QStringLiteral("a.png"));
    EXPECT_FALSE(found->contents.has_value());
    const Data picture = *found->fileWrapper->contents->load();
    EXPECT_EQ(picture.view(), "PNG");
    EXPECT_TRUE(picture.begin() > bytes.begin() && picture.end() < bytes.end()) << "copied";

    const auto attachment = [](const Pieces& pieces) {
        const auto result = attachmentOf(read(withAttachment(pieces)));
        return result ? *result : TextAttachment();
    };
    // As the platform writes it: a flag, the wrapper, and a cell when the flag is set.
    const auto flagged = [&](const char flag) {
        return Piece([&file, flag](auto& a) {
            a.group("c@");
            a.raw({&flag, 1});
            a.objectValue(a.classes("NSFileWrapper"), [&] { data(file)(a); });
        });
    };
    EXPECT_TRUE(attachment({flagged(0)}).fileWrapper);
    EXPECT_TRUE(attachment({flagged(1), obj("NSTextAttachmentCell")}).fileWrapper);
    const auto inPlace = raw('[' + QByteArray::number(file.size()) + "c]", file);
    EXPECT_TRUE(attachment({wrapper(inPlace)}).fileWrapper);
    EXPECT_FALSE(attachment({wrapper(data("rtfx"))}).fileWrapper);
    EXPECT_EQ(attachment({nil(), data("GIF")}).contents->view(), "GIF");
    EXPECT_TRUE(attachment({wrapper(data(folder)), data("GIF")}).fileWrapper);
    const auto own = attachment({wrapper(data(folder)), data("GIF"), str("com.compuserve.gif")});
    EXPECT_EQ(own.fileType, QStringLiteral("com.compuserve.gif"));
    EXPECT_FALSE(own.fileWrapper) << "a folder beside contents with a type";
}

}  // namespace
}  // namespace foundation::test
