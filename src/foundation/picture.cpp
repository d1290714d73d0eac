// SPDX-License-Identifier: MIT
//
// The table of picture formats. A format whose header is broken (no size, an empty or absurd one,
// a field that no writer writes) is no picture; one whose header is whole but whose pixels end
// early is. Sizes are those of the stored pixels, before any rotation or cropping that the file
// specifies.
#include "foundation/picture.h"

#include <algorithm>
#include <array>

#include "foundation/picture_header.h"

namespace foundation {
namespace picture {
namespace {

using namespace std::string_view_literals;

std::optional<Header> recognisePng(const Bytes& bytes) {
    if (!bytes.is(0, "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"sv) || !bytes.has(16, 13)) return {};
    const quint8 depth = bytes.u8(24);
    const quint8 colourType = bytes.u8(25);
    const bool knownDepth = isOneOf<quint8>(depth, {1, 2, 4, 8, 16});
    const bool knownColourType = isOneOf<quint8>(colourType, {0, 2, 3, 4, 6});
    if (!knownDepth || !knownColourType || bytes.be16(26) != 0 || bytes.u8(28) > 1) return {};
    return sized(PictureFormat::png, bytes.be32(16), bytes.be32(20));
}

std::optional<Header> recogniseGif(const Bytes& bytes) {
    if (!bytes.is(0, "GIF87a") && !bytes.is(0, "GIF89a")) return {};
    return sized(PictureFormat::gif, bytes.le16(6), bytes.le16(8));
}

std::optional<Header> recogniseBmp(const Bytes& bytes) {
    if (!bytes.is(0, "BM")) return {};
    const quint32 headerSize = bytes.le32(14);
    const bool isCore = headerSize == 12;
    if (!isCore && !isOneOf<quint32>(headerSize, {16, 40, 52, 56, 64, 108, 124})) return {};
    const quint16 planes = bytes.le16(isCore ? 22 : 26);
    const quint16 depth = bytes.le16(isCore ? 24 : 28);
    if (planes != 1 || !isOneOf<quint16>(depth, {0, 1, 2, 4, 8, 16, 24, 32})) return {};
    if (isCore) return sized(PictureFormat::bmp, bytes.le16(18), bytes.le16(20));
    const qint64 height = static_cast<qint32>(bytes.le32(22));  // below zero: top row first
    return sized(PictureFormat::bmp, static_cast<qint32>(bytes.le32(18)), qAbs(height));
}

/// Icons and cursors; the size is that of the largest picture inside.
std::optional<Header> recogniseIco(const Bytes& bytes) {
    const bool isCursor = bytes.is(0, "\0\0\2\0"sv);
    if (!isCursor && !bytes.is(0, "\0\0\1\0"sv)) return {};
    const qint64 count = bytes.le16(4);
    if (count == 0 || count > maximumSteps) return {};
    QSize largest;
    for (qint64 i = 0; i < count && bytes.has(6 + 16 * i, 16); ++i) {
        const qint64 entry = 6 + 16 * i;
        const bool plausible = bytes.u8(entry + 3) == 0 && bytes.le32(entry + 8) > 0 &&
                               bytes.le32(entry + 12) >= 6 + 16 * count &&
                               (isCursor || bytes.le16(entry + 4) <= 1);
        if (!plausible) return {};
        const auto side = [](quint8 stored) { return stored == 0 ? 256 : int{stored}; };
        const QSize size(side(bytes.u8(entry)), side(bytes.u8(entry + 1)));
        if (size.width() * size.height() > largest.width() * largest.height()) largest = size;
    }
    return sized(PictureFormat::ico, largest.width(), largest.height());
}

/// The side of the square icon that an element of an ICNS file holds, or 0.
int icnsSide(const Bytes& bytes, qint64 at) {
    struct Element {
        std::string_view type;
        int side;
    };
    static constexpr Element elements[] = {
        {"ICON", 32},  {"ICN#", 32},   {"icm#", 16}, {"icm4", 16}, {"icm8", 16},  {"ics#", 16},
        {"ics4", 16},  {"ics8", 16},   {"is32", 16}, {"icl4", 32}, {"icl8", 32},  {"il32", 32},
        {"ich#", 48},  {"ich4", 48},   {"ich8", 48}, {"ih32", 48}, {"it32", 128}, {"icp4", 16},
        {"icp5", 32},  {"icp6", 64},   {"ic04", 16}, {"ic05", 32}, {"ic07", 128}, {"ic08", 256},
        {"ic09", 512}, {"ic10", 1024}, {"ic11", 32}, {"ic12", 64}, {"ic13", 256}, {"ic14", 512},
        {"icsb", 18},  {"icsB", 36},   {"sb24", 24}, {"SB24", 48},
    };
    for (const Element& element : elements)
        if (bytes.is(at, element.type)) return element.side;
    return 0;
}

std::optional<Header> recogniseIcns(const Bytes& bytes) {
    if (!bytes.is(0, "icns")) return {};
    int largest = 0;
    qint64 at = 8;
    for (int step = 0; step < maximumSteps && bytes.has(at, 8); ++step) {
        largest = qMax(largest, icnsSide(bytes, at));
        const quint32 length = bytes.be32(at + 4);
        if (length < 8) break;
        at += length;
    }
    return sized(PictureFormat::icns, largest, largest);
}

std::optional<Header> recogniseWebp(const Bytes& bytes) {
    if (!bytes.is(0, "RIFF") || !bytes.is(8, "WEBP")) return {};
    const auto le24 = [&](qint64 at) { return bytes.le16(at) | bytes.u8(at + 2) << 16; };
    if (bytes.is(12, "VP8X") && bytes.has(20, 10))
        return sized(PictureFormat::webp, 1 + le24(24), 1 + le24(27));
    if (bytes.is(12, "VP8L") && bytes.u8(20) == 0x2f && bytes.has(21, 4)) {
        const quint32 bits = bytes.le32(21);
        return sized(PictureFormat::webp, 1 + (bits & 0x3fff), 1 + (bits >> 14 & 0x3fff));
    }
    if (bytes.is(12, "VP8 ") && bytes.is(23, "\x9d\x01\x2a"))
        return sized(PictureFormat::webp, bytes.le16(26) & 0x3fff, bytes.le16(28) & 0x3fff);
    return {};
}

std::optional<Header> recognisePhotoshop(const Bytes& bytes) {
    if (!bytes.is(0, "8BPS")) return {};
    const quint16 version = bytes.be16(4);  // 2: the large document format
    const quint16 channels = bytes.be16(12);
    const bool knownDepth = isOneOf<quint16>(bytes.be16(22), {1, 8, 16, 32});
    if ((version != 1 && version != 2) || channels < 1 || channels > 56 || !knownDepth) return {};
    return sized(PictureFormat::photoshop, bytes.be32(18), bytes.be32(14));
}

/// A PICT drawing that begins at the offset: its frame, then the version opcode.
std::optional<Header> recognisePictAt(const Bytes& bytes, qint64 start) {
    const auto coordinate = [&](qint64 index) {
        return static_cast<qint16>(bytes.be16(start + 2 + 2 * index));
    };
    const bool isVersion2 = bytes.is(start + 10, "\x00\x11\x02\xff\x0c\x00"sv);
    // The first version's opcode is short: what follows must be one that starts a drawing.
    const bool isVersion1 = bytes.is(start + 10, "\x11\x01"sv) &&
                            isOneOf<quint8>(bytes.u8(start + 12), {0x00, 0x01, 0xa0, 0xa1, 0xff});
    if (!isVersion1 && !isVersion2) return {};
    return sized(PictureFormat::pict, coordinate(3) - coordinate(1), coordinate(2) - coordinate(0));
}

std::optional<Header> recognisePict(const Bytes& bytes) {
    // On disk 512 bytes of any content come first, on a pasteboard none.
    if (const auto header = recognisePictAt(bytes, 512)) return header;
    return recognisePictAt(bytes, 0);
}

std::optional<Header> recognisePdf(const Bytes& bytes) {
    const auto isDigit = [&](qint64 at) { return bytes.u8(at) >= '0' && bytes.u8(at) <= '9'; };
    if (!bytes.is(0, "%PDF-") || !isDigit(5) || !bytes.is(6, ".") || !isDigit(7)) return {};
    return Header{PictureFormat::pdf, {}};
}

struct Format {
    PictureFormat format;
    const char* name;
    const char* mimeType;
    const char* fileExtension;
};

// In the order of the enumeration.
constexpr std::array formats{
    Format{PictureFormat::png, "PNG", "image/png", "png"},
    Format{PictureFormat::jpeg, "JPEG", "image/jpeg", "jpeg"},
    Format{PictureFormat::gif, "GIF", "image/gif", "gif"},
    Format{PictureFormat::tiff, "TIFF", "image/tiff", "tiff"},
    Format{PictureFormat::bmp, "BMP", "image/bmp", "bmp"},
    Format{PictureFormat::ico, "ICO", "image/vnd.microsoft.icon", "ico"},
    Format{PictureFormat::icns, "ICNS", "image/x-icns", "icns"},
    Format{PictureFormat::webp, "WebP", "image/webp", "webp"},
    Format{PictureFormat::heic, "HEIC", "image/heic", "heic"},
    Format{PictureFormat::avif, "AVIF", "image/avif", "avif"},
    Format{PictureFormat::photoshop, "Photoshop", "image/vnd.adobe.photoshop", "psd"},
    Format{PictureFormat::jpeg2000, "JPEG 2000", "image/jp2", "jp2"},
    Format{PictureFormat::pict, "PICT", "image/x-pict", "pict"},
    Format{PictureFormat::pdf, "PDF", "application/pdf", "pdf"},
    Format{PictureFormat::svg, "SVG", "image/svg+xml", "svg"},
};

const Format& formatOf(PictureFormat format) {
    return formats[static_cast<std::size_t>(format)];
}

// The weakest magic comes last.
constexpr Recogniser recognisers[] = {
    recognisePng,  recogniseJpeg, recogniseGif,       recogniseTiff,     recogniseBmp,
    recogniseWebp, recogniseHeif, recognisePhotoshop, recogniseJpeg2000, recognisePdf,
    recogniseIcns, recogniseIco,  recogniseSvg,       recognisePict,
};

}  // namespace
}  // namespace picture

const char* name(PictureFormat format) {
    return picture::formatOf(format).name;
}

const char* mimeType(PictureFormat format) {
    return picture::formatOf(format).mimeType;
}

const char* fileExtension(PictureFormat format) {
    return picture::formatOf(format).fileExtension;
}

std::optional<Picture> recognisePicture(const Data& data) {
    const picture::Bytes bytes(data.view());
    for (const picture::Recogniser recognise : picture::recognisers)
        if (const auto header = recognise(bytes))
            return Picture{data, header->format, header->pixelSize};
    return {};
}

}  // namespace foundation
