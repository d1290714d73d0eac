// SPDX-License-Identifier: MIT
//
// What cameras and scanners write: JPEG and TIFF, and the orientation of the camera. In JPEG it is
// in a small TIFF of its own.
#include <optional>

#include "foundation/picture_header.h"

namespace foundation::picture {
namespace {

using namespace std::string_view_literals;

constexpr quint64 tagWidth = 256;
constexpr quint64 tagHeight = 257;
constexpr quint64 tagOrientation = 274;
constexpr quint64 tagResolution = 282;
constexpr quint64 tagResolutionUnit = 296;

constexpr quint64 unitCentimetre = 3;
constexpr double centimetresPerInch = 2.54;

/// The first directory of a TIFF.
class TiffDirectory {
  public:
    explicit TiffDirectory(const Bytes& bytes) : bytes_(bytes), bigEndian_(bytes.is(0, "MM")) {
        if (!bigEndian_ && !bytes.is(0, "II")) return;
        big_ = number(2, 2) == 43;  // 64-bit offsets
        if (!big_ && number(2, 2) != 42) return;
        if (big_ && (number(4, 2) != 8 || number(6, 2) != 0)) return;
        const quint64 directory = big_ ? number(8, 8) : number(4, 4);
        if (directory < 8 || directory > static_cast<quint64>(bytes.size())) return;
        start_ = static_cast<qint64>(directory);
        count_ = static_cast<qint64>(qMin<quint64>(number(start_, big_ ? 8 : 2), maximumSteps));
    }

    /// The fraction under a tag; 0 without one.
    [[nodiscard]] double fraction(quint64 tag) const {
        for (qint64 i = 0; i < count_; ++i) {
            const qint64 entry = entryAt(i);
            if (number(entry, 2) != tag || number(entry + 2, 2) != 5) continue;
            // Two LONGs: in place where offsets have 64 bits, else elsewhere.
            const auto at = big_ ? entry + 12 : static_cast<qint64>(number(entry + 8, 4));
            const auto denominator = static_cast<double>(number(at + 4, 4));
            return denominator > 0 ? static_cast<double>(number(at, 4)) / denominator : 0;
        }
        return 0;
    }

    /// The whole number under a tag; 0 without one.
    [[nodiscard]] quint64 value(quint64 tag) const {
        quint64 value = 0;
        for (qint64 i = 0; i < count_; ++i) {
            const qint64 entry = entryAt(i);
            if (number(entry, 2) != tag) continue;
            const qint64 at = entry + (big_ ? 12 : 8);
            switch (number(entry + 2, 2)) {  // BYTE, SHORT, LONG and LONG8 are held in place
                case 1:
                    value = number(at, 1);
                    break;
                case 3:
                    value = number(at, 2);
                    break;
                case 4:
                    value = number(at, 4);
                    break;
                case 16:
                    value = number(at, 8);
                    break;
                default:
                    value = 0;
                    break;
            }
        }
        return value;
    }

  private:
    Bytes bytes_;
    bool bigEndian_;
    bool big_ = false;
    qint64 start_ = 0;
    qint64 count_ = 0;

    [[nodiscard]] qint64 entryAt(qint64 index) const {
        return start_ + (big_ ? 8 + 20 * index : 2 + 12 * index);
    }
    [[nodiscard]] quint64 number(qint64 at, int length) const {
        switch (length) {
            case 1:
                return bytes_.u8(at);
            case 2:
                return bigEndian_ ? bytes_.be16(at) : bytes_.le16(at);
            case 4:
                return bigEndian_ ? bytes_.be32(at) : bytes_.le32(at);
            default:
                return bigEndian_ ? bytes_.be64(at) : bytes_.le64(at);
        }
    }
};

/// The segments before the pixels of a JPEG.
class JpegSegments {
  public:
    explicit JpegSegments(const Bytes& bytes) : bytes_(bytes) {}

    /// False where pixels begin, at the end, and where a length is broken.
    bool next() {
        at_ = next_;
        while (steps_++ < maximumSteps && bytes_.u8(at_) == 0xff) {
            const quint8 marker = this->marker();
            const bool isBare = marker == 0x01 || (marker >= 0xd0 && marker <= 0xd8);
            if (marker == 0xff || isBare) {  // fill bytes, too, have no content
                at_ += isBare ? 2 : 1;
                continue;
            }
            const quint16 length = bytes_.be16(at_ + 2);
            if (marker == 0xda || marker == 0xd9 || length < 2) return false;
            next_ = at_ + 2 + length;
            return true;
        }
        return false;
    }
    [[nodiscard]] quint8 marker() const { return bytes_.u8(at_ + 1); }
    [[nodiscard]] bool isFrame() const {
        return marker() >= 0xc0 && marker() <= 0xcf &&
               !isOneOf<quint8>(marker(), {0xc4, 0xc8, 0xcc});
    }
    [[nodiscard]] Bytes content() const { return bytes_.part(at_ + 4, next_ - at_ - 4); }

  private:
    Bytes bytes_;
    qint64 at_ = 0;
    qint64 next_ = 2;
    int steps_ = 0;
};

/// The four orientations with a rotation by 90 or 270 degrees.
bool isSideways(quint64 orientation) {
    return orientation >= 5 && orientation <= 8;
}

/// The camera's TIFF in a segment; nothing in others.
std::optional<TiffDirectory> cameraDirectory(const JpegSegments& segments) {
    constexpr std::string_view mark = "Exif\0\0"sv;
    const Bytes content = segments.content();
    if (segments.marker() != 0xe1 || !content.is(0, mark)) return {};
    return TiffDirectory(content.part(static_cast<qint64>(mark.size()), content.size()));
}

bool isTurnedJpeg(const Bytes& bytes) {
    for (JpegSegments segments(bytes); segments.next();) {
        if (const auto directory = cameraDirectory(segments))
            return isSideways(directory->value(tagOrientation));
    }
    return false;
}

double densityOf(const TiffDirectory& directory) {
    const double resolution = directory.fraction(tagResolution);
    const bool isCentimetres = directory.value(tagResolutionUnit) == unitCentimetre;
    return isCentimetres ? resolution * centimetresPerInch : resolution;
}

}  // namespace

std::optional<Header> recogniseJpeg(const Bytes& bytes) {
    if (!bytes.is(0, "\xff\xd8\xff"sv)) return {};
    // Pixels before any frame header have no size: the file is broken.
    for (JpegSegments segments(bytes); segments.next();) {
        const Bytes content = segments.content();
        if (segments.isFrame()) return sized(PictureFormat::jpeg, content.be16(3), content.be16(1));
    }
    return {};
}

std::optional<Header> recogniseTiff(const Bytes& bytes) {
    const TiffDirectory directory(bytes);
    const auto side = [&](quint64 tag) {
        return static_cast<qint64>(qMin<quint64>(directory.value(tag), maximumSide + 1));
    };
    return sized(PictureFormat::tiff, side(tagWidth), side(tagHeight));
}

double jpegDensity(const Bytes& bytes) {
    double density = 0;
    for (JpegSegments segments(bytes); segments.next() && density == 0;) {
        const Bytes content = segments.content();
        if (segments.marker() == 0xe0 && content.is(0, "JFIF\0"sv)) {
            const quint16 dots = content.be16(8);
            if (content.u8(7) == 1) density = dots;
            if (content.u8(7) == 2) density = dots * centimetresPerInch;
        } else if (const auto directory = cameraDirectory(segments)) {
            density = densityOf(*directory);
        }
    }
    return density;
}

double tiffDensity(const Bytes& bytes) {
    return densityOf(TiffDirectory(bytes));
}

}  // namespace foundation::picture

namespace foundation {

bool isTurned(const Picture& picture) {
    if (picture.traits) return picture.traits->isTurned;
    const Data data = picture.data.load().value_or(Data());
    const picture::Bytes bytes(data.view());
    if (picture.format == PictureFormat::jpeg) return picture::isTurnedJpeg(bytes);
    if (picture.format == PictureFormat::tiff)
        return picture::isSideways(picture::TiffDirectory(bytes).value(picture::tagOrientation));
    return false;
}

}  // namespace foundation
