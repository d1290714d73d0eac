// SPDX-License-Identifier: MIT
#include "foundation/non_keyed/typed_stream.h"

#include <bit>

namespace foundation::non_keyed {

namespace {

constexpr quint8 streamerVersion = 4;
constexpr std::string_view littleEndianName = "streamtyped";
constexpr std::string_view bigEndianName = "typedstream";

}  // namespace

TypedStream::TypedStream(const Data& data) : position_(data.begin()), end_(data.end()) {
    if (byte() != streamerVersion) throw MalformedArchive();
    const std::string_view name = unsharedString();
    if (name != littleEndianName && name != bigEndianName) throw MalformedArchive();
    isBigEndian_ = name == bigEndianName;
    integer();  // the writing system's version
}

std::string_view TypedStream::unsharedString() {
    const qint32 length = integer();
    if (length < 0) throw MalformedArchive();
    return bytes(static_cast<quint64>(length));
}

qint32 TypedStream::wideInteger(quint8 head) {
    if (head == static_cast<quint8>(Mark::int16)) return fixed<qint16>();
    if (head == static_cast<quint8>(Mark::int32)) return fixed<qint32>();
    throw MalformedArchive();
}

template <class Real, class Bits>
double TypedStream::real() {
    const quint8 head = byte();
    if (head != static_cast<quint8>(Mark::real)) return integer(head);
    return std::bit_cast<Real>(fixed<Bits>());
}

template double TypedStream::real<float, quint32>();
template double TypedStream::real<double, quint64>();

}  // namespace foundation::non_keyed
