#pragma once
// SPDX-License-Identifier: MIT
//
// What the recognisers of picture formats share: reading fields of a header that may be cut short
// or wrong, and the rule for plausible sizes. Private to foundation.

#include <QByteArrayView>
#include <QSize>
#include <QtEndian>
#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "foundation/picture.h"

namespace foundation::picture {

/// A recogniser's result: the format and, where the header has one, the size.
struct Header {
    PictureFormat format;
    std::optional<QSize> pixelSize;
};

/// No real picture has a longer side; a header that says so is broken.
constexpr qint64 maximumSide = 1'000'000;

/// The most steps along structures that point from one to the next.
constexpr int maximumSteps = 4096;

template <class T, std::size_t n>
bool isOneOf(T value, const T (&values)[n]) {
    return std::find(std::begin(values), std::end(values), value) != std::end(values);
}

/// The result for a format whose header always has the size: nothing when the size is empty or
/// absurd, since the header is broken then.
[[nodiscard]] inline std::optional<Header> sized(PictureFormat format, qint64 width,
                                                 qint64 height) {
    if (width < 1 || height < 1 || width > maximumSide || height > maximumSide) return {};
    return Header{format, QSize(static_cast<int>(width), static_cast<int>(height))};
}

/// The bytes of a header, read at any offset. Past the end every number is 0.
class Bytes {
  public:
    explicit Bytes(QByteArrayView bytes) : bytes_(bytes) {}

    [[nodiscard]] qint64 size() const { return bytes_.size(); }
    [[nodiscard]] bool has(qint64 offset, qint64 length) const {
        return offset >= 0 && length >= 0 && offset <= size() && length <= size() - offset;
    }
    /// Whether exactly these characters are there.
    [[nodiscard]] bool is(qint64 offset, std::string_view text) const {
        const auto length = static_cast<qint64>(text.size());
        return has(offset, length) && std::string_view(bytes_.data() + offset, text.size()) == text;
    }
    /// The bytes [offset, offset + length), cut at the end of the data.
    [[nodiscard]] Bytes part(qint64 offset, qint64 length) const {
        if (!has(offset, 0)) return Bytes({});
        return Bytes(bytes_.sliced(offset, qMin(length, size() - offset)));
    }
    [[nodiscard]] QByteArrayView view() const { return bytes_; }

    [[nodiscard]] quint8 u8(qint64 offset) const { return read<quint8>(offset, false); }
    [[nodiscard]] quint16 be16(qint64 offset) const { return read<quint16>(offset, true); }
    [[nodiscard]] quint32 be32(qint64 offset) const { return read<quint32>(offset, true); }
    [[nodiscard]] quint64 be64(qint64 offset) const { return read<quint64>(offset, true); }
    [[nodiscard]] quint16 le16(qint64 offset) const { return read<quint16>(offset, false); }
    [[nodiscard]] quint32 le32(qint64 offset) const { return read<quint32>(offset, false); }
    [[nodiscard]] quint64 le64(qint64 offset) const { return read<quint64>(offset, false); }

  private:
    template <class T>
    [[nodiscard]] T read(qint64 offset, bool bigEndian) const {
        if (!has(offset, sizeof(T))) return 0;
        const char* at = bytes_.data() + offset;
        return bigEndian ? qFromBigEndian<T>(at) : qFromLittleEndian<T>(at);
    }

    QByteArrayView bytes_;
};

using Recogniser = std::optional<Header> (*)(const Bytes&);

std::optional<Header> recogniseJpeg(const Bytes& bytes);
std::optional<Header> recogniseTiff(const Bytes& bytes);
/// "ftyp" files: HEIC and AVIF.
std::optional<Header> recogniseHeif(const Bytes& bytes);
/// JPEG 2000 in its box format and as a bare codestream.
std::optional<Header> recogniseJpeg2000(const Bytes& bytes);
/// Dots an inch; 0 where the header doesn't say.
double jpegDensity(const Bytes& bytes);
double tiffDensity(const Bytes& bytes);
/// XML whose root element is SVG's.
std::optional<Header> recogniseSvg(const Bytes& bytes);

}  // namespace foundation::picture
