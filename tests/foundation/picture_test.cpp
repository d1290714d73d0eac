// SPDX-License-Identifier: MIT
#include "foundation/picture.h"
#include "foundation/picture_details.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using foundation::Data;
using foundation::PictureFormat;
using foundation::pixelsPerPoint;
using foundation::recognisePicture;
using enum foundation::PictureFormat;

/// Bytes from hex digits and, between apostrophes, characters: "89 'PNG' 0d0a".
QByteArray bytes(const char* notation) {
    QByteArray result;
    for (const char* at = notation; *at;) {
        if (*at == '\'') {
            const char* end = std::strchr(at + 1, '\'');
            result.append(at + 1, end - at - 1);
            at = end + 1;
        } else if (*at == ' ') {
            ++at;
        } else {
            result.append(QByteArray::fromHex(QByteArray(at, 2)));
            at += 2;
        }
    }
    return result;
}

/// In a buffer of its own without a byte to spare, so that a sanitizer sees every overrun.
Data exactly(QByteArrayView view) {
    const auto buffer = std::make_shared<std::vector<char>>(view.begin(), view.end());
    buffer->shrink_to_fit();
    return Data(buffer, QByteArrayView(buffer->data(), view.size()));
}

struct Known {
    const char* what;
    PictureFormat format;
    int width;  ///< 0: no size
    int height;
    QByteArray data;
};

constexpr const char* ftypHeic = "00000018 'ftypheic' 00000000 'mif1heic' ";
constexpr const char* heifSizes =
    "00000068 'meta' 00000000"
    "00000010 'hdlr' 00000000 00000000"
    "0000004c 'iprp' 00000044 'ipco' 00000010 'hvcC' 00000000 00000000"
    "00000014 'ispe' 00000000 00000200 00000200"
    "00000014 'ispe' 00000000 00000fc0 00000bd0";

std::vector<Known> knownPictures() {
    const QByteArray pict2 = bytes("1234 000a 0014 0074 00dc 0011 02ff 0c00 ffff");
    return {
        {"png", png, 10, 17,
         bytes("89 'PNG' 0d0a1a0a 0000000d 'IHDR' 0000000a 00000011 0802000000")},
        {"jpeg behind an application segment", jpeg, 5, 3,
         bytes("ffd8 ffe0 0004 0000 ffff c0 0011 08 0003 0005 03")},
        {"progressive jpeg", jpeg, 640, 480, bytes("ffd8 ffdb 0003 00 ffc2 000b 08 01e0 0280 01")},
        {"gif with fewer pixels than its size", gif, 8, 9, bytes("'GIF89a' 0800 0900 800000 3b")},
        {"little-endian tiff", tiff, 300, 200,
         bytes("'II' 2a00 08000000 0200 0001 0300 01000000 2c010000 0101 0400 01000000 c8000000")},
        {"big-endian tiff", tiff, 300, 200,
         bytes("'MM' 002a 00000008 0002 0100 0003 00000001 012c0000 0101 0003 00000001 00c80000")},
        {"tiff with 64-bit offsets", tiff, 16, 8,
         bytes("'II' 2b00 0800 0000 1000000000000000 0200000000000000"
               "0001 0300 0100000000000000 1000000000000000"
               "0101 0400 0100000000000000 0800000000000000")},
        {"bmp", bmp, 13, 10,
         bytes("'BM' c6010000 00000000 36000000 28000000 0d000000 0a000000 0100 1800")},
        {"bmp stored from the top", bmp, 13, 10,
         bytes("'BM' c6010000 00000000 36000000 28000000 0d000000 f6ffffff 0100 1800")},
        {"bmp of OS/2", bmp, 13, 10,
         bytes("'BM' c6010000 00000000 1a000000 0c000000 0d00 0a00 0100 1800")},
        {"ico, the largest of two", ico, 256, 256,
         bytes("0000 0100 0200 10100000 0100 2000 00010000 26000000"
               "00000000 0100 2000 00010000 26010000")},
        {"icns, the largest of two", icns, 256, 256,
         bytes("'icns' 00000028 'is32' 0000000c 00000000 'ic08' 0000000c 00000000")},
        {"lossy webp", webp, 550, 368,
         bytes("'RIFF' 24000000 'WEBPVP8 ' 18000000 300100 9d012a 2602 7001")},
        {"lossless webp", webp, 386, 395,
         bytes("'RIFF' 24000000 'WEBPVP8L' 18000000 2f 8181 6210")},
        {"extended webp", webp, 1024, 772,
         bytes("'RIFF' 24000000 'WEBPVP8X' 0a000000 10000000 ff0300 030300")},
        {"heic, the whole and not its tiles", heic, 4032, 3024, bytes(ftypHeic) + bytes(heifSizes)},
        {"heic without its size", heic, 0, 0, bytes(ftypHeic)},
        {"avif by a compatible brand", avif, 0, 0,
         bytes("00000018 'ftypmif1' 00000000 'mif1avif'")},
        {"photoshop", photoshop, 800, 600,
         bytes("'8BPS' 0001 000000000000 0003 00000258 00000320 0008 0003")},
        {"jp2", jpeg2000, 640, 480,
         bytes("0000000c 'jP  ' 0d0a870a 00000014 'ftypjp2 ' 00000000 'jp2 '"
               "0000001e 'jp2h' 00000016 'ihdr' 000001e0 00000280 0003 07 07 00 00")},
        {"jpeg 2000 codestream with an offset", jpeg2000, 600, 470,
         bytes("ff4f ff51 0029 0000 00000280 000001e0 00000028 0000000a")},
        {"pict 2 from a pasteboard", pict, 200, 106, pict2},
        {"pict 2 from a disk", pict, 200, 106, QByteArray(512, '\0') + pict2},
        {"pict 1", pict, 200, 106, bytes("1234 000a 0014 0074 00dc 1101 01 000a")},
        {"pdf", pdf, 0, 0, bytes("'%PDF-1.4' 0a '%%EOF' 0a")},
        {"svg", svg, 120, 81,
         "<svg width='120' height=\"80.6px\" xmlns='http://www.w3.org/2000/svg'/>"},
        {"svg with everything before it", svg, 0, 0,
         "\xef\xbb\xbf<?xml version=\"1.0\"?>\n<!-- <html> -->\n<!DOCTYPE svg PUBLIC \"-//W3C//>\" "
         "[ <!ENTITY ns \"http://x>\"> <!-- ]> --> ]>\n<?style a?><svg xmlns=\"&ns;\" "
         "width=\"10cm\">"},
        {"svg with a prefix", svg, 0, 0,
         "<s:svg xmlns:s=\"http://www.w3.org/2000/svg\" width=\"100%\" height=\"5\">"},
        {"svg in inches", svg, 192, 96, "<svg width='2in' height='72pt'/>"},
        {"svg with a view box", svg, 21, 9, "<svg width='100%' viewBox='-1, 0 20.6 9'/>"},
        {"svg with half a view box", svg, 0, 0, "<svg viewBox='0 0 20'/>"},
        {"svg in UTF-16", svg, 0, 0, bytes("fffe 3c00 7300 7600 6700 3e00")},
    };
}

TEST(Picture, RecognisesFormatAndSize) {
    for (const Known& row : knownPictures()) {
        SCOPED_TRACE(row.what);
        const auto picture = recognisePicture(exactly(row.data));
        ASSERT_TRUE(picture.has_value());
        EXPECT_STREQ(name(picture->format), name(row.format));
        EXPECT_EQ(picture->pixelSize.value_or(QSize(0, 0)), QSize(row.width, row.height));
        EXPECT_EQ(picture->data.load()->view(), row.data);
    }
}

TEST(Picture, DensitiesOfScreensMakePicturesSmaller) {
    const QByteArray png = bytes(
        "89 'PNG' 0d0a1a0a 0000000d 'IHDR' 0000000a 00000011 0802000000 00000000 00000009 'pHYs'");
    const QByteArray frame = bytes("ffc0 0011 08 0003 0005 03");
    const QByteArray sides =
        bytes("'MM' 002a 00000008 0004 0100 0003 00000001 012c0000 0101 0003 00000001 00c80000");
    const struct {
        const char* what;
        QByteArray data;
        int pixels;
    } rows[] = {
        {"png without it", bytes("89 'PNG' 0d0a1a0a 0000000d 'IHDR' 0000000a 00000011 0802000000"),
         1},
        {"png, 144 an inch", png + bytes("00001625 00001625 01"), 2},
        {"png, 216", png + bytes("00002138 00002138 01"), 3},
        {"png, 72", png + bytes("00000b13 00000b13 01"), 1},
        {"png, 300, of a printer", png + bytes("00002e23 00002e23 01"), 1},
        {"png, proportions only", png + bytes("00001625 00001625 00"), 1},
        {"png, absurd", png + bytes("ffffffff ffffffff 01"), 1},
        {"jpeg", bytes("ffd8 ffe0 0010 'JFIF' 00 0102 01 0090 0090 0000") + frame, 2},
        {"jpeg, by the centimetre",
         bytes("ffd8 ffe0 0010 'JFIF' 00 0102 02 0039 0039 0000") + frame, 2},
        {"jpeg of a camera",
         bytes("ffd8 ffe1 002a 'Exif' 0000 'MM' 002a 00000008 0001 011a 0005 00000001 0000001a"
               "00000000 00000090 00000001") +
             frame,
         2},
        {"tiff",
         sides + bytes("011a 0005 00000001 0000003e 0128 0003 00000001 00020000 00000000"
                       "00000120 00000002"),
         2},
        {"tiff, divided by nothing",
         sides + bytes("011a 0005 00000001 0000003e 0128 0003 00000001 00020000 00000000"
                       "00000120 00000000"),
         1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const auto picture = recognisePicture(exactly(row.data));
        ASSERT_TRUE(picture);
        EXPECT_EQ(pixelsPerPoint(*picture), row.pixels);
    }
}

TEST(Picture, BrokenHeadersAreNoPictures) {
    struct Row {
        const char* what;
        QByteArray data;
    };
    const Row rows[] = {
        {"nothing", {}},
        {"words", "plain words"},
        {"an archive", bytes("'PK' 0304 ' not a picture'")},
        {"png without its size", bytes("89 'PNG' 0d0a1a0a 0000000d 'IHDR'")},
        {"png of width 0", bytes("89 'PNG' 0d0a1a0a 0000000d 'IHDR' 00000000 00000011 0802000000")},
        {"absurd png", bytes("89 'PNG' 0d0a1a0a 0000000d 'IHDR' 7fffffff 7fffffff 0802000000")},
        {"png of an unknown colour type",
         bytes("89 'PNG' 0d0a1a0a 0000000d 'IHDR' 00000001 00000011 0805000000")},
        {"jpeg that ends before its frame", bytes("ffd8 ffe0 0004 0000")},
        {"jpeg with pixels before its frame", bytes("ffd8 ffda 0003 00 ffc2 000b 08 01e0 0280 01")},
        {"jpeg with a segment of length 0", bytes("ffd8 ffe0 0000 ffc2 000b 08 01e0 0280 01")},
        {"gif of height 0", bytes("'GIF87a' 0800 0000")},
        {"tiff without directory", bytes("'II' 2a00 08000000")},
        {"tiff with its directory behind the end", bytes("'II' 2a00 ffffffff 0200 0001")},
        {"text that begins with BM", "BM is not only a bitmap but also two letters of a word"},
        {"bmp of the least height",
         bytes("'BM' 00000000 00000000 36000000 28000000 0d000000 00000080 0100 1800")},
        {"ico without pictures", bytes("0000 0100 0000 10100000 0100 2000 00010000 26000000")},
        {"ico whose picture lies in its directory",
         bytes("0000 0100 0100 10100000 0100 2000 00010000 02000000")},
        {"icns without icons", bytes("'icns' 00000010 'TOC ' 00000008")},
        {"sound", bytes("'RIFF' 24000000 'WAVEfmt ' 10000000")},
        {"film", bytes("00000018 'ftypisom' 00000000 'isomavc1'")},
        {"heic of no size",
         bytes(ftypHeic) + bytes("00000034 'meta' 00000000 00000028 'iprp' 00000020 'ipco' "
                                 "00000014 'ispe' 00000000 00000000 00000200")},
        {"pict with its corners swapped", bytes("1234 0074 00dc 000a 0014 0011 02ff 0c00 ffff")},
        {"pdf named in words", "the letters %PDF-1.4"},
        {"another document", "<?xml version=\"1.0\"?><html><svg/></html>"},
        {"svg of another namespace", "<svg xmlns=\"urn:other\" width=\"1\" height=\"1\">"},
        {"svg behind an endless comment", "<!-- <svg>"},
        {"prefix that is not declared", "<s:svg>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_FALSE(recognisePicture(exactly(row.data)).has_value());
    }
}

TEST(Picture, AHeaderMayEndAnywhere) {
    for (const Known& row : knownPictures())
        for (qsizetype length = 0; length < row.data.size(); ++length) {
            SCOPED_TRACE(std::string(row.what) + " cut at " + std::to_string(length));
            const auto picture = recognisePicture(exactly(QByteArrayView(row.data).first(length)));
            EXPECT_EQ(picture ? picture->format : row.format, row.format);
        }
}

// Chains that never come to the point: each must be given up long before the bytes are through.
TEST(Picture, EndlessHeadersAreGivenUp) {
    constexpr qsizetype size = 8'000'000;
    const auto repeated = [](const QByteArray& start, const QByteArray& link) {
        return start + link.repeated(size / link.size());
    };
    EXPECT_FALSE(recognisePicture(repeated(bytes("ffd8"), bytes("ffe0 0002"))));
    EXPECT_FALSE(recognisePicture(repeated(bytes("ffd8"), bytes("ff"))));
    EXPECT_FALSE(recognisePicture(repeated(bytes("'icns' 00000000"), bytes("'TOC ' 00000008"))));
    EXPECT_FALSE(recognisePicture(repeated("<", " a='' ")));
    EXPECT_FALSE(recognisePicture(repeated("", " ")));
    const auto endlessBoxes = recognisePicture(repeated(bytes(ftypHeic), bytes("00000008 'free'")));
    ASSERT_TRUE(endlessBoxes);
    EXPECT_FALSE(endlessBoxes->pixelSize);
}

}  // namespace
