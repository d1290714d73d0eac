// SPDX-License-Identifier: MIT
//
// The writers that other tests lean on, against bytes worked out by hand.
#include <gtest/gtest.h>

#include "support/non_keyed_archive_writer.h"
#include "support/property_list_writer.h"

namespace {

using support::NonKeyedArchiveWriter;
using support::PropertyListWriter;

TEST(ArchiveWriters, PropertyListComesKeysFirstWithEqualScalarsShared) {
    PropertyListWriter list;
    const auto name = list.string(u"n");
    const auto numbers = list.array({list.integer(300), list.integer(-1), list.real(0.5),
                                     list.uid(7), list.uid(7), list.integer(300)});
    const auto top =
        list.dictionary({{name, list.string(u"\u00e9")}, {list.string(u"x"), numbers}});
    EXPECT_EQ(list.binary(top, {.offset = 2}).toHex(' ').toStdString(),
              "62 70 6c 69 73 74 30 30 "
              "d2 01 02 03 04 51 6e 51 78 61 00 e9 a6 05 06 07 08 09 05 "
              "11 01 2c 13 ff ff ff ff ff ff ff ff 23 3f e0 00 00 00 00 00 00 80 07 80 07 "
              "00 08 00 0d 00 0f 00 11 00 14 00 1b 00 1e 00 27 00 30 00 32 "
              "00 00 00 00 00 00 02 01 00 00 00 00 00 00 00 0a 00 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 34");
}

TEST(ArchiveWriters, TypedStreamSharesStringsClassesAndTypeCodes) {
    NonKeyedArchiveWriter archive;
    archive.array(2, [&] {
        archive.number('q', 5);
        archive.number('q', 300);
    });
    EXPECT_EQ(archive.bytes().toHex(' ').toStdString(),
              "04 0b 73 74 72 65 61 6d 74 79 70 65 64 81 e8 03 84 01 40 84 84 84 07 4e 53 41 72 72 "
              "61 79 00 84 84 08 4e 53 4f 62 6a 65 63 74 00 85 84 01 69 02 92 84 84 84 08 4e 53 4e "
              "75 6d 62 65 72 00 84 84 07 4e 53 56 61 6c 75 65 00 94 84 01 2a 84 84 01 71 99 05 86 "
              "92 84 96 98 98 99 81 2c 01 86 86");
}

TEST(ArchiveWriters, TypedStreamNumbersTakeTheShortestFormInEitherByteOrder) {
    using enum NonKeyedArchiveWriter::ByteOrder;
    const auto written = [](NonKeyedArchiveWriter::ByteOrder order) {
        NonKeyedArchiveWriter archive(order);
        const auto header = archive.bytes().size();
        for (const qint64 value : {-110, 127, -111, 128, 32767, -32768})
            archive.integer(value);
        archive.real64(41);
        archive.real64(0.5);
        return archive.bytes().mid(header).toHex(' ').toStdString();
    };
    EXPECT_EQ(written(little),
              "92 7f 81 91 ff 81 80 00 81 ff 7f 82 00 80 ff ff 29 83 00 00 00 00 00 00 e0 3f");
    EXPECT_EQ(written(big),
              "92 7f 81 ff 91 81 00 80 81 7f ff 82 ff ff 80 00 29 83 3f e0 00 00 00 00 00 00");
}

}  // namespace
