// SPDX-License-Identifier: MIT
//
// Both forms of property lists, the binary one from its frame inwards.
#include <gtest/gtest.h>

#include <QtEndian>
#include <bit>
#include <functional>

#include "foundation/plist/binary_property_list.h"
#include "foundation/plist/xml_property_list_reader.h"
#include "foundation/plist/xml_to_binary.h"
#include "writers/property_list_writer.h"

namespace {

using foundation::BinaryPropertyList;
using foundation::Data;
using writers::PropertyListWriter;
using Kind = BinaryPropertyList::Kind;
using namespace std::string_literals;

std::string described(const BinaryPropertyList& list, BinaryPropertyList::Ref ref);

std::string describedParts(const BinaryPropertyList& list, const BinaryPropertyList::Node& node) {
    std::string text;
    for (quint64 i = 0; i < node.count(); ++i) {
        if (i > 0) text += ' ';
        if (node.kind() == Kind::dictionary)
            text += described(list, list.key(node, i)) + '=' + described(list, list.value(node, i));
        else
            text += described(list, list.element(node, i));
    }
    return text;
}

std::string described(const BinaryPropertyList& list, BinaryPropertyList::Ref ref) {
    const BinaryPropertyList::Node node = list.node(ref);
    const auto bytes = [&] { return list.slice(node).toByteArray(); };
    const auto real = [&] {
        return QByteArray::number(std::bit_cast<double>(node.value()), 'g', 17).toStdString();
    };
    switch (node.kind()) {
        case Kind::invalid:
            return "invalid";
        case Kind::null:
            return "null";
        case Kind::boolean:
            return node.value() ? "true" : "false";
        case Kind::integer:
            return std::to_string(qint64(node.value()));
        case Kind::hugeInteger:
            return "huge " + std::to_string(node.value());
        case Kind::real:
            return "real " + real();
        case Kind::date:
            return "date " + real();
        case Kind::data:
            return '<' + bytes().toHex().toStdString() + '>';
        case Kind::asciiString:
            return '"' + bytes().toStdString() + '"';
        case Kind::utf16String:
            return 'u' + bytes().toHex().toStdString();
        case Kind::uid:
            return '#' + std::to_string(node.value());
        case Kind::array:
            return '[' + describedParts(list, node) + ']';
        case Kind::set:
            return '(' + describedParts(list, node) + ')';
        case Kind::dictionary:
            return '{' + describedParts(list, node) + '}';
    }
    return "?";
}

std::string described(const QByteArray& bytes) {
    const auto list = BinaryPropertyList::open(Data(bytes));
    return list ? described(*list, list->topObject()) : "refused";
}

// --- The frame ---

/// Fields of the trailer, as distances from the end.
constexpr qsizetype offsetSizeField = 26;
constexpr qsizetype refSizeField = 25;
constexpr qsizetype countField = 24;
constexpr qsizetype topField = 16;
constexpr qsizetype tableField = 8;

void setNumber(QByteArray& bytes, qsizetype fromEnd, quint64 value) {
    qToBigEndian(value, bytes.data() + bytes.size() - fromEnd);
}

void setByte(QByteArray& bytes, qsizetype fromEnd, int value) {
    bytes[bytes.size() - fromEnd] = char(value);
}

QByteArray framed() {
    PropertyListWriter list;
    return list.binary(list.array({list.string(u"a"), list.integer(1)}));
}

TEST(PropertyList, BinaryFrameIsCheckedBeforeAnythingIsRead) {
    const QByteArray good = framed();
    ASSERT_EQ(described(good), "[\"a\" 1]");
    // Three objects, their offsets in one byte each, and the trailer.
    const qsizetype table = good.size() - 32 - 3;
    const struct {
        const char* fault;
        std::function<void(QByteArray&)> damage;
    } rows[] = {
        {"nothing but magic and trailer", [&](auto& b) { b.remove(8, b.size() - 40); }},
        {"another magic", [](auto& b) { b[6] = '1'; }},
        {"a byte behind the trailer", [](auto& b) { b.append('\0'); }},
        {"a byte between table and trailer", [](auto& b) { b.insert(b.size() - 32, '\x08'); }},
        {"offsets without bytes", [](auto& b) { setByte(b, offsetSizeField, 0); }},
        {"offsets of nine bytes", [](auto& b) { setByte(b, offsetSizeField, 9); }},
        {"references without bytes", [](auto& b) { setByte(b, refSizeField, 0); }},
        {"references of nine bytes", [](auto& b) { setByte(b, refSizeField, 9); }},
        {"no objects",
         [&](auto& b) {
             b.remove(table, 3);
             setNumber(b, countField, 0);
         }},
        {"fewer objects than offsets", [](auto& b) { setNumber(b, countField, 2); }},
        {"more objects than offsets", [](auto& b) { setNumber(b, countField, 4); }},
        {"a count beyond the signed range", [](auto& b) { setNumber(b, countField, ~0ull - 2); }},
        {"a table whose size wraps round",
         [&](auto& b) {
             b.remove(table, 3);
             b.insert(table, QByteArray(8, '\0'));
             setByte(b, offsetSizeField, 8);
             setNumber(b, countField, (1ull << 61) + 1);
         }},
        {"a top past the objects", [](auto& b) { setNumber(b, topField, 3); }},
        {"a table in the magic", [](auto& b) { setNumber(b, tableField, 8); }},
        {"a table in the trailer",
         [](auto& b) { setNumber(b, tableField, quint64(b.size()) - 31); }},
        {"a table past the end", [](auto& b) { setNumber(b, tableField, ~0ull); }},
        {"an offset that points at the table", [&](auto& b) { b[table + 2] = char(table); }},
        {"a top whose offset lies in the magic", [&](auto& b) { b[table] = 7; }},
    };
    for (const auto& row : rows) {
        QByteArray bytes = good;
        row.damage(bytes);
        EXPECT_EQ(described(bytes), "refused") << row.fault;
    }
    for (qsizetype size = 0; size < good.size(); ++size)
        EXPECT_EQ(described(good.first(size)), "refused") << size << " bytes";

    QByteArray otherVersion = good;
    otherVersion[7] = '9';
    EXPECT_EQ(described(otherVersion), described(good));
    QByteArray offsetInMagic = good;
    offsetInMagic[table + 2] = 7;
    EXPECT_EQ(described(offsetInMagic), "[\"a\" invalid]") << "refused only when it is looked at";
}

TEST(PropertyList, BinaryNumbersMustBeAsWideAsWhatTheyAddress) {
    PropertyListWriter list;
    std::vector<PropertyListWriter::Node> many;
    for (int i = 0; i < 300; ++i)
        many.push_back(list.integer(i));
    const auto top = list.array(many);
    EXPECT_EQ(described(list.binary(top, {.reference = 1})), "refused");
    EXPECT_EQ(described(list.binary(top, {.offset = 1})), "refused");
    const std::string expected = described(list.binary(top));
    for (int width = 2; width <= 8; ++width)
        EXPECT_EQ(described(list.binary(top, {.offset = width, .reference = width})), expected);
}

TEST(PropertyList, BinaryObjectsAreCheckedWhenTheyAreLookedAt) {
    const std::tuple<const char*, QByteArray, std::string> rows[] = {
        {"null", "00", "null"},
        {"fill byte", "0f", "invalid"},
        {"one to four bytes are unsigned", "12ffffffff", "4294967295"},
        {"eight bytes are signed", "13ffffffffffffffff", "-1"},
        {"small number in sixteen bytes", "1400000000000000000000000000000003", "3"},
        {"beyond the signed range", "1400000000000000008000000000000000",
         "huge 9223372036854775808"},
        {"integer of 32 bytes", "15" + QByteArray(64, '0'), "invalid"},
        {"integer that breaks off", "130000", "invalid"},
        {"single real", "223f000000", "real 0.5"},
        {"real of two bytes", "210000", "invalid"},
        {"real that breaks off", "233f0000", "invalid"},
        {"date", "33c0e0000000000000", "date -32768"},
        {"date of four bytes", "3200000000", "invalid"},
        {"data past the table", "4301", "invalid"},
        {"string with a long count", "5f1300000000000000026162", "\"ab\""},
        {"count that is no integer", "5f2200000000", "invalid"},
        {"count that breaks off", "5f13", "invalid"},
        {"count of 32 bytes", "5f15" + QByteArray(64, '0'), "invalid"},
        {"count whose size wraps round", "6f138000000000000001d83d", "invalid"},
        {"count beyond the file", "4f137fffffffffffffff", "invalid"},
        {"unpaired surrogate", "61d83d", "ud83d"},
        {"UTF-16 with half a unit", "610061620061"s.data(), "u0061"},
        {"UTF-16 past the table", "620061", "invalid"},
        {"string of newer writers", "7161", "invalid"},
        {"identifier of eight bytes", "8700000000ffffffff", "#4294967295"},
        {"identifier beyond 32 bits", "840100000000", "invalid"},
        {"identifier of nine bytes", "88000000000000000001", "invalid"},
        {"identifier that breaks off", "8101", "invalid"},
        {"array past the table", "a10", "invalid"},
        {"reference past the objects", "a101", "[invalid]"},
        {"dictionary with room for its keys only", "d100", "invalid"},
        {"unknown marker", "b0", "invalid"},
    };
    for (const auto& [name, hex, expected] : rows) {
        PropertyListWriter list;
        EXPECT_EQ(described(list.binary(list.raw(QByteArray::fromHex(hex)))), expected) << name;
    }
}

// --- XML ---

/// Through the binary form, as archives are read.
std::string fromXml(const QByteArray& xml) {
    const auto binary = foundation::binaryFromXml(Data(xml));
    return binary ? described(binary->toByteArray()) : "refused";
}

TEST(PropertyList, XmlReadsEveryElement) {
    const std::tuple<const char*, QByteArray, std::string> rows[] = {
        {"no element around", "<array/>", "[]"},
        {"empty elements", "<dict><key/><string/><key>a</key><data/></dict>",
         "{\"\"=\"\" \"a\"=<>}"},
        {"nested containers",
         "<array><dict><key>a</key><array><true/></array></dict><false/></array>",
         "[{\"a\"=[true]} false]"},
        {"attributes and blanks",
         "<plist version=\"1.0>\" >\n<array >\t<true /> </array\n></plist>", "[true]"},
        {"what is passed over",
         "<?xml version=\"1.0\"?><!-- <a> -- --><!DOCTYPE plist [ <!ENTITY a \"]>\"> <!-- ]> --> ]>"
         "<plist><?a <b>?><true/><!--c--></plist>\n<!--d-->",
         "true"},
        {"NUL bytes at the end", QByteArray("<true/>\n\0\0", 10), "true"},
        {"entities and references", "<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;</string>",
         "\"<>&\"'AB\""},
        {"marked sections", "<string>a<![CDATA[<b>&lt;]]><!-- c -->d</string>", "\"a<b>&lt;d\""},
        {"text beyond ASCII", "<string>\u00e9\U0001F44D</string>", "u00e9d83ddc4d"},
        {"reference to half a pair", "<string>&#xD83D;</string>", "ufffd"},
        {"integers",
         "<array><integer> -5 </integer><integer>+0x1F</integer>"
         "<integer>18446744073709551615</integer><integer>-9223372036854775808</integer></array>",
         "[-5 31 huge 18446744073709551615 -9223372036854775808]"},
        {"reals", "<array><real>-1.5e3</real><real>nan</real><real>-Infinity</real></array>",
         "[real -1500 real nan real -inf]"},
        {"dates",
         "<array><date>2001-01-02T00:00:01Z</date><date>2000-02-29T23:59:60Z</date></array>",
         "[date 86401 date -26438400]"},
        {"data with white space", "<data>\n\tAQ\n I=\n</data>", "<0102>"},
        {"identifiers", "<array><dict><key>CF$UID</key><integer>7</integer></dict></array>",
         "[#7]"},
        {"identifier beside another key",
         "<dict><key>CF$UID</key><integer>7</integer><key>a</key><integer>7</integer></dict>",
         "{\"CF$UID\"=7 \"a\"=7}"},
        {"identifier below zero", "<dict><key>CF$UID</key><integer>-7</integer></dict>",
         "{\"CF$UID\"=-7}"},
        {"identifier beyond 32 bits", "<dict><key>CF$UID</key><integer>4294967296</integer></dict>",
         "{\"CF$UID\"=4294967296}"},
        {"identifier that is text", "<dict><key>CF$UID</key><string>7</string></dict>",
         "{\"CF$UID\"=\"7\"}"},
    };
    for (const auto& [name, xml, expected] : rows)
        EXPECT_EQ(fromXml(xml), expected) << name;
}

TEST(PropertyList, XmlIsRefusedWhereItIsMalformed) {
    const std::pair<const char*, QByteArray> rows[] = {
        {"nothing", ""},
        {"no object", "<plist></plist>"},
        {"two objects", "<true/><true/>"},
        {"something behind the end", "<plist><true/></plist><true/>"},
        {"element without an end", "<array><true/>"},
        {"crossed ends", "<array><dict></array></dict>"},
        {"end without a beginning", "</array>"},
        {"end that is empty", "<array></array/>"},
        {"unknown element", "<array><set/></array>"},
        {"text between elements", "<array>x</array>"},
        {"NUL between elements", QByteArray("<array>\0</array>", 16)},
        {"key without a value", "<dict><key>a</key></dict>"},
        {"value without a key", "<dict><true/></dict>"},
        {"key of a key", "<dict><key>a</key><key>b</key></dict>"},
        {"key in an array", "<array><key>a</key></array>"},
        {"plist in a plist", "<plist><plist><true/></plist></plist>"},
        {"element in a text", "<string>a<true/></string>"},
        {"text that ends as another", "<string>a</data>"},
        {"boolean with text", "<true>1</true>"},
        {"entity of the document type", "<!DOCTYPE p [<!ENTITY a \"b\">]><string>&a;</string>"},
        {"entity without an end", "<string>&amp</string>"},
        {"reference to NUL", "<string>&#0;</string>"},
        {"reference beyond Unicode", "<string>&#x110000;</string>"},
        {"reference with a sign", "<string>&#+65;</string>"},
        {"comment without an end", "<!-- <true/>"},
        {"comment that closes itself", "<!--><true/>"},
        {"marked section without an end", "<string><![CDATA[a</string>"},
        {"quotation without an end", "<plist version=\"1.0><true/></plist>"},
        {"integer without digits", "<integer>0x</integer>"},
        {"integer with two signs", "<integer>-+5</integer>"},
        {"integer beyond 64 bits", "<integer>18446744073709551616</integer>"},
        {"integer below 64 bits", "<integer>-9223372036854775809</integer>"},
        {"real with a comma", "<real>1,5</real>"},
        {"thirteenth month", "<date>2001-13-01T00:00:00Z</date>"},
        {"date without a zone", "<date>2001-01-01T00:00:00</date>"},
        {"data that is no base64", "<data>A*==</data>"},
        {"broken UTF-8", "<string>\xff</string>"},
        {"unknown encoding", "<?xml version='1.0' encoding='ebcdic'?><true/>"},
        {"half a unit of UTF-16", QByteArray("\xfe\xff\0<\0", 5)},
    };
    for (const auto& [fault, xml] : rows)
        EXPECT_EQ(fromXml(xml), "refused") << fault;

    const QByteArray good = "<plist><dict><key>a</key><string>&#65;</string></dict></plist>";
    for (qsizetype size = 0; size < good.size(); ++size)
        EXPECT_EQ(fromXml(good.first(size)), "refused") << size << " bytes";
    const auto nested = [](int levels) {
        return fromXml(QByteArray("<array>").repeated(levels) +
                       QByteArray("</array>").repeated(levels));
    };
    EXPECT_NE(nested(500), "refused");
    EXPECT_EQ(nested(513), "refused");
}

TEST(PropertyList, XmlIsReadInItsEncoding) {
    const QString text = QStringLiteral("<string>\u00e9</string>");
    const auto inUtf16 = [&](bool isBig) {
        QByteArray bytes(isBig ? "\xfe\xff" : "\xff\xfe");
        for (const QChar unit : text) {
            bytes.append(isBig ? unit.row() : unit.cell());
            bytes.append(isBig ? unit.cell() : unit.row());
        }
        return bytes;
    };
    const std::pair<const char*, QByteArray> rows[] = {
        {"UTF-8 with a mark", "\xef\xbb\xbf" + text.toUtf8()},
        {"UTF-8 that says so", "<?xml version=\"1.0\" encoding = 'UTF-8'?>" + text.toUtf8()},
        {"ISO 8859-1", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + text.toLatin1()},
        {"UTF-16, high byte first", inUtf16(true)},
        {"UTF-16, low byte first", inUtf16(false)},
    };
    for (const auto& [name, xml] : rows) {
        EXPECT_EQ(fromXml(xml), "u00e9") << name;
        EXPECT_TRUE(foundation::XmlPropertyListReader::looksLikeXml(xml)) << name;
    }
}

}  // namespace
