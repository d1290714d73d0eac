#pragma once
// SPDX-License-Identifier: MIT
//
// TypedStream: the bytes of a non-keyed archive from front to back: its header, its integers, reals
// and strings in the byte order of the header. Every read is checked against what is left and
// throws MalformedArchive, which never leaves the reader of non-keyed archives.

#include <QtEndian>
#include <string_view>

#include "foundation/data.h"

namespace foundation::non_keyed {

/// The bytes are no non-keyed archive or break its grammar or bounds.
struct MalformedArchive {};

/// Classes from an object's own up to the root; real archives stay below 10.
constexpr size_t maximumClassChain = 64;

/// Bytes in the place of a value that mean something else.
enum class Mark : quint8 {
    int16 = 0x81,
    int32 = 0x82,
    real = 0x83,
    isNew = 0x84,
    nil = 0x85,
    endOfObject = 0x86,
};

class TypedStream {
  public:
    /// Reads the header. The data must outlive the stream.
    explicit TypedStream(const Data& data);

    [[nodiscard]] const char* position() const { return position_; }
    /// Goes on at a position inside the data.
    void moveTo(const char* position) { position_ = position; }
    [[nodiscard]] bool isBigEndian() const { return isBigEndian_; }
    [[nodiscard]] quint64 remaining() const { return static_cast<quint64>(end_ - position_); }
    /// Reads the next byte if it is the mark.
    bool takes(Mark mark) {
        if (position_ == end_) throw MalformedArchive();
        if (static_cast<quint8>(*position_) != static_cast<quint8>(mark)) return false;
        ++position_;
        return true;
    }
    /// The next bytes, in place.
    std::string_view bytes(quint64 size) {
        if (size > remaining()) throw MalformedArchive();
        const std::string_view result(position_, size);
        position_ += size;
        return result;
    }
    quint8 byte() {
        if (position_ == end_) throw MalformedArchive();
        return static_cast<quint8>(*position_++);
    }
    /// An integer of at most 32 bits, with its sign.
    qint32 integer() { return integer(byte()); }
    /// The same, when its first byte has been read already.
    qint32 integer(quint8 head) {
        // Small numbers represent themselves; the marks are between the two ranges.
        if (head < firstReserved || head > lastReserved) return static_cast<qint8>(head);
        return wideInteger(head);
    }
    /// A real, of four or eight bytes unless it is written as an integer.
    double real32() { return real<float, quint32>(); }
    double real64() { return real<double, quint64>(); }
    /// A length and that many bytes.
    std::string_view unsharedString();

  private:
    qint32 wideInteger(quint8 head);
    template <class T>
    T fixed() {
        const char* source = bytes(sizeof(T)).data();
        return isBigEndian_ ? qFromBigEndian<T>(source) : qFromLittleEndian<T>(source);
    }
    template <class Real, class Bits>
    double real();

    static constexpr quint8 firstReserved = 0x80;
    static constexpr quint8 lastReserved = 0x91;

    const char* position_;
    const char* end_;
    bool isBigEndian_ = false;
};

}  // namespace foundation::non_keyed
