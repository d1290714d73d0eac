// SPDX-License-Identifier: MIT
//
// Non-keyed archives that are broken, or that few bytes make large.
#include <gtest/gtest.h>

#include "foundation/file_wrapper.h"
#include "foundation/unarchiver_fixture.h"
#include "writers/file_wrapper_writer.h"

namespace foundation::test {
namespace {

using namespace std::string_literals;

/// An archive of these bytes behind the mark of a new object.
QByteArray rootObject(const std::string& bytes) {
    return archived(raw("@", '\x84' + bytes + '\x86'));
}

Piece nestedArrays(int depth) {
    return [=](auto& a) {
        a.array(depth > 1, [&] {
            if (depth > 1) nestedArrays(depth - 1)(a);
        });
    };
}

TEST(Unarchiver, RefusesMalformedArchives) {
    const QByteArray good = archived(str("x"));
    const auto edited = [&](qsizetype at, char byte) {
        QByteArray bytes = good;
        bytes[at] = byte;
        return bytes;
    };
    const auto probe = [](const QByteArray& types, QByteArrayView bytes) {
        return archived(obj("Probe", {raw(types, bytes)}));
    };
    const auto repeated = [](const char* text, int count) {
        return QByteArray(text).repeated(count);
    };
    // The same forms unharmed.
    ASSERT_FALSE(read(good).isNothing());
    ASSERT_FALSE(read(archived(nestedArrays(200))).isNothing());
    ASSERT_FALSE(read(rootObject("\x84\x84\1A\0\x85"s)).isNothing());
    ASSERT_FALSE(read(probe("[2{A={B=c}}][0c]", "ab")).isNothing());
    ASSERT_FALSE(read(probe("@", "\x92")).isNothing());

    // In the tables: 92 is the root object and "@", 93 its class and "Probe", 95 a C string.
    const std::pair<const char*, QByteArray> rows[] = {
        {"no data", {}},
        {"streamer of an older system", edited(0, 3)},
        {"other magic", edited(2, 'S')},
        {"big-endian header on little-endian data",
         archived(str("x"), Order::big).first(16) +
             archived(str(std::string(300, 'x').c_str())).mid(16)},
        {"root group of another type", archived(raw("i", "\1"))},
        {"root group of two", archived(raw("@@", "\x85\x85"))},
        {"nil type string", good.first(16) + '\x85'},
        {"type string past the table", good.first(16) + '\x92'},
        {"object past the table", probe("@", "\x70")},
        {"class in place of an object", probe("@", "\x93")},
        {"C string in place of an object",
         archived(obj("Probe", {raw("*", "\x84\x84\1c"), raw("@", "\x95")}))},
        {"object in place of a class", probe("@", "\x84\x92\x86")},
        {"object in place of a C string", probe("*", "\x92")},
        {"C string without a body", probe("*", "\x84\x85")},
        {"object of class nil", rootObject("\x85")},
        {"class without a name", rootObject("\x84\x85")},
        {"class below itself", rootObject("\x84\x84\1A\0\x93"s)},
        {"class below one that is not finished", rootObject("\x84\x84\1A\0\x84\x84\1B\0\x93"s)},
        {"endless class chain",
         rootObject("\x84\x84\1A\0"s + QByteArray("\x84\x93\0", 3).repeated(64).toStdString() +
                    '\x85')},
        {"object without an end", good.chopped(1)},
        {"reserved head of an integer", probe("i", "\x80")},
        {"mark in place of an integer", probe("i", "\x84")},
        {"real in place of an integer", probe("i", "\x83\1\2\3\4")},
        {"negative length", probe("+", "\xff")},
        {"length past the end", probe("+", "\x82\xff\xff\xff\x7f")},
        {"characters past the end", probe("[99999999c]", "abc")},
        {"objects past the end", probe("[99999999@]", "\x85\x85")},
        {"array whose size overflows", probe("[99999999999c]", "abc")},
        {"array without a size", probe("[c]", "a")},
        {"array of no type", probe("[9]", "")},
        {"array of a type without width", probe("[9!]", "")},
        {"empty array in another", probe("[9[0c]]", "")},
        {"empty arrays in plenty", probe(repeated("[0c]", 17), "")},
        {"struct without fields", probe("{}", "")},
        {"struct of a name only", probe("{A=}", "")},
        {"open struct", probe("{A=c", "a")},
        {"crossed brackets", probe("[2{A=c]}", "ab")},
        {"brackets too deep", probe(repeated("{", 17) + 'c' + repeated("}", 17), "a")},
        {"empty type string", probe("", "")},
        {"union", probe("(A=cc)", "ab")},
        {"unknown letter", probe("x", "a")},
        {"nested too deep", archived(nestedArrays(300))},
    };
    for (const auto& [fault, bytes] : rows)
        EXPECT_TRUE(read(bytes).isNothing()) << fault;
}

TEST(Unarchiver, RefusesEveryProperPrefix) {
    const QByteArray bytes = archived(
        array({obj("Probe",
                   {obj("NSDate", {raw("d", "\x83zzzzzzzz")}), raw("I", "\xff"), data("abc")}),
               obj("NSAttributedString",
                   {str("ab"), raw("iI", "\1\1"), dictionary({str("NSLink"), str("x")})}),
               obj("Unknown", {raw("{?=[2f]:}", "\1\2\x85")})}),
        Order::big);
    ASSERT_FALSE(read(bytes).isNothing());
    for (qsizetype size = 0; size < bytes.size(); ++size)
        EXPECT_TRUE(read(bytes.first(size)).isNothing()) << size;
    EXPECT_FALSE(read(bytes + "\xff\xff").isNothing()) << "what follows the root is ignored";
}

TEST(Unarchiver, RefusesGraphsOutOfProportionToTheirArchive) {
    const auto nils = [](int count) {
        const Piece group = raw(QByteArray(count, '@'), QByteArray(count, '\x85'));
        return read(archived([&](auto& a) { a.array(count, [&] { group(a); }); }));
    };
    EXPECT_FALSE(nils(5000).isNothing());
    EXPECT_TRUE(nils(6000).isNothing()) << "more elements than a real archive has";

    const auto chain = [](int length) {
        return read(archived([&](auto& a) {
            a.array(length, [&] {
                int last = a.array(0, [] {});
                for (int i = 1; i < length; ++i)
                    last = a.array(1, [&] { a.reference(last); });
            });
        }));
    };
    EXPECT_FALSE(chain(200).isNothing());
    EXPECT_TRUE(chain(300).isNothing()) << "nested too deep by reference";

    // They are not kept: 98 is the class of the first.
    const auto empties = [](int count) {
        const QByteArray objects = QByteArray("\x84\x98\x86").repeated(count);
        const Piece many = raw(QByteArray(count, '@'), objects);
        return read(archived(array({obj("Holder", {obj("Probe"), many})})));
    };
    EXPECT_FALSE(empties(100'000).isNothing());
    EXPECT_TRUE(empties(600'000).isNothing()) << "empty instances";
}

// Each of these would take minutes if work were repeated for each reference.
TEST(Unarchiver, WorksOnceOnWhatManyBytesReferTo) {
    const std::string length = "\x82\x40\x42\x0f\0"s;  // of a million
    const std::string name(1'000'000, 'N');
    const auto holder = [](const std::string& first, const QByteArray& again) {
        return described(
            read(rootObject("\x84\x84\1A\0\x85"s + first + again.repeated(100'000).toStdString())));
    };
    // In the table of strings: 92 is "@", 93 "A", 94 the type string and 95 the long name, or 94
    // the long type string.
    EXPECT_EQ(
        holder("\x84\1#\x84\x84" + length + name + "\0\x85"s, QByteArray("\x94\x84\x95\0\x85", 5)),
        "A <A>");
    EXPECT_EQ(holder("\x84" + length + '{' + name.substr(4) + "=c}x", "\x94x"), "A <A>");

    const std::vector<writers::FileDraft> files(10'000, {.name = QStringLiteral("c")});
    const auto wrappers = read(archived([&](auto& a) {
                              a.array(1000, [&] {
                                  const int folder =
                                      a.data(writers::serializedFileWrapper({.children = files}));
                                  for (int i = 1; i < 1000; ++i)
                                      a.object("NSFileWrapper", [&] { a.reference(folder); });
                              });
                          })).object<Array>();
    ASSERT_TRUE(wrappers);
    EXPECT_TRUE(wrappers->elements[1].object<FileWrapper>());
    EXPECT_EQ(wrappers->elements[1].object<FileWrapper>(),
              wrappers->elements[999].object<FileWrapper>());
}

}  // namespace
}  // namespace foundation::test
