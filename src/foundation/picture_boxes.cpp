// SPDX-License-Identifier: MIT
//
// Pictures in box files: HEIC and AVIF, JPEG 2000. A box is a big-endian length, a type of four
// characters and a body that may hold further boxes.
#include <optional>

#include "foundation/picture_header.h"

namespace foundation::picture {
namespace {

using namespace std::string_view_literals;

constexpr int maximumBoxes = 4096;

/// A cursor over consecutive boxes, within a budget shared by nested cursors.
class BoxCursor {
  public:
    BoxCursor(const Bytes& bytes, int& budget) : bytes_(bytes), budget_(budget) {}

    /// Goes to the next box; false at the end and where a length is broken.
    bool next() {
        if (budget_ <= 0 || !bytes_.has(next_, 8)) return false;
        --budget_;
        at_ = next_;
        quint64 length = bytes_.be32(at_);
        headerSize_ = 8;
        if (length == 1) {
            headerSize_ = 16;
            length = bytes_.be64(at_ + 8);
        } else if (length == 0) {  // up to the end of the file
            length = static_cast<quint64>(bytes_.size() - at_);
        }
        if (length < headerSize_) return false;
        const auto left = static_cast<quint64>(bytes_.size() - at_);
        length_ = static_cast<qint64>(qMin(length, left));
        next_ = at_ + length_;
        return true;
    }
    [[nodiscard]] bool isType(std::string_view type) const { return bytes_.is(at_ + 4, type); }
    /// What the box holds, without its first `skip` bytes.
    [[nodiscard]] Bytes body(qint64 skip = 0) const {
        const auto start = static_cast<qint64>(headerSize_) + skip;
        return bytes_.part(at_ + start, qMax<qint64>(0, length_ - start));
    }

  private:
    Bytes bytes_;
    int& budget_;
    qint64 at_ = 0;
    qint64 next_ = 0;
    qint64 length_ = 0;
    quint64 headerSize_ = 8;
};

/// The body of the first box of a type, without its first `skip` bytes.
std::optional<Bytes> findBox(const Bytes& bytes, std::string_view type, int& budget,
                             qint64 skip = 0) {
    for (BoxCursor box(bytes, budget); box.next();)
        if (box.isType(type)) return box.body(skip);
    return {};
}

/// The format of a brand; nothing for brands of films and of other things.
std::optional<PictureFormat> formatOfBrand(const Bytes& bytes, qint64 at) {
    for (const std::string_view brand : {"avif"sv, "avis"sv})
        if (bytes.is(at, brand)) return PictureFormat::avif;
    for (const std::string_view brand :
         {"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv, "hevx"sv, "hevm"sv, "hevs"sv})
        if (bytes.is(at, brand)) return PictureFormat::heic;
    return {};
}

std::optional<PictureFormat> heifFormat(const Bytes& ftyp) {
    if (const auto format = formatOfBrand(ftyp, 0)) return format;
    // These brands name only the structure; a compatible brand names the coding.
    if (!ftyp.is(0, "mif1") && !ftyp.is(0, "msf1") && !ftyp.is(0, "miaf")) return {};
    for (qint64 at = 8; at + 4 <= qMin<qint64>(ftyp.size(), maximumBoxes); at += 4)
        if (const auto format = formatOfBrand(ftyp, at)) return format;
    return {};
}

}  // namespace

std::optional<Header> recogniseHeif(const Bytes& bytes) {
    if (!bytes.is(4, "ftyp")) return {};
    int budget = maximumBoxes;
    BoxCursor first(bytes, budget);
    if (!first.next()) return {};
    const auto format = heifFormat(first.body());
    if (!format) return {};

    const auto meta = findBox(bytes, "meta", budget, 4);
    const auto properties = meta ? findBox(*meta, "iprp", budget) : meta;
    const auto container = properties ? findBox(*properties, "ipco", budget) : properties;
    if (!container) return Header{*format, {}};
    // Tiles and thumbnails have sizes of their own; the whole picture is the largest.
    std::optional<Header> largest;
    bool anySize = false;
    for (BoxCursor box(*container, budget); box.next();) {
        if (!box.isType("ispe")) continue;
        anySize = true;
        const Bytes body = box.body(4);
        const auto area = [](const QSize& size) { return qint64{size.width()} * size.height(); };
        const auto candidate = sized(*format, body.be32(0), body.be32(4));
        if (candidate && (!largest || area(*candidate->pixelSize) > area(*largest->pixelSize)))
            largest = candidate;
    }
    return anySize ? largest : Header{*format, {}};
}

namespace {

/// The image and tile size segment that opens a codestream.
std::optional<Header> recogniseCodestream(const Bytes& bytes) {
    if (!bytes.is(0, "\xff\x4f\xff\x51"sv)) return {};
    const qint64 width = qint64{bytes.be32(8)} - bytes.be32(16);
    const qint64 height = qint64{bytes.be32(12)} - bytes.be32(20);
    return sized(PictureFormat::jpeg2000, width, height);
}

}  // namespace

std::optional<Header> recogniseJpeg2000(const Bytes& bytes) {
    if (!bytes.is(0, "\0\0\0\x0cjP  \r\n\x87\n"sv)) return recogniseCodestream(bytes);
    int budget = maximumBoxes;
    for (BoxCursor box(bytes, budget); box.next();) {
        if (box.isType("jp2c")) return recogniseCodestream(box.body());
        if (!box.isType("jp2h")) continue;
        if (const auto header = findBox(box.body(), "ihdr", budget))
            return sized(PictureFormat::jpeg2000, header->be32(4), header->be32(0));
    }
    return {};
}

}  // namespace foundation::picture
