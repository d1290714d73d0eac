#pragma once
// SPDX-License-Identifier: MIT
//
// ByteBuffer: collects the bytes of a document and passes them on in large pieces. Without a
// destination it keeps everything for take(). What is appended can't be changed any more; TextSink
// is for formats that have to look back.

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>
#include <algorithm>
#include <charconv>
#include <cstring>
#include <utility>

#include "export/text_sink.h"

namespace vell {

class ByteBuffer {
  public:
    ByteBuffer() = default;
    explicit ByteBuffer(ByteSink next) : next_(std::move(next)) {}
    ByteBuffer(const ByteBuffer&) = delete;
    ByteBuffer& operator=(const ByteBuffer&) = delete;

    void append(char c) { append(&c, 1); }
    void append(QByteArrayView bytes);
    template <std::size_t size>
    void append(const char (&literal)[size]) {
        append(literal, static_cast<qsizetype>(size) - 1);
    }
    template <class Number, class... Format>
    void appendNumber(Number value, Format... format) {
        char* const begin = reserve(longestNumber);
        end(std::to_chars(begin, begin + longestNumber, value, format...).ptr);
    }
    /// As UTF-8; what isn't valid Unicode becomes U+FFFD. `replace` is called with each ASCII
    /// character that `isSpecial`, and appends what stands for it.
    template <class IsSpecial, class Replace>
    void appendText(QStringView text, IsSpecial isSpecial, Replace replace);

    // For a buffer without a destination:
    /// What was appended since the last call of one of these.
    [[nodiscard]] QByteArray take();
    void clear() { size_ = 0; }
    [[nodiscard]] QByteArrayView view() const { return {begin_, size_}; }
    /// Passes on what is left; to be called at the end of a document.
    void flush();

  private:
    static constexpr qsizetype pieceSize = 1 << 16;
    static constexpr qsizetype smallestCapacity = 256;
    static constexpr qsizetype longestNumber = 400;
    static constexpr qsizetype unitsAtOnce = 4096;
    static constexpr qsizetype block = 16;
    static constexpr qsizetype mostBytesPerUnit = 3;

    ByteSink next_;
    QByteArray bytes_;
    char* begin_ = nullptr;
    qsizetype size_ = 0;
    qsizetype capacity_ = 0;

    void append(const char* bytes, qsizetype size) {
        std::memcpy(reserve(size), bytes, static_cast<std::size_t>(size));
        size_ += size;
    }
    /// Room for so many bytes, at most half a piece; end() says how far it was used.
    [[nodiscard]] char* reserve(qsizetype bytes) {
        if (capacity_ - size_ < bytes) makeRoom(bytes);
        return begin_ + size_;
    }
    void end(const char* used) { size_ = used - begin_; }
    void makeRoom(qsizetype bytes);
    template <class IsSpecial>
    [[nodiscard]] static bool isPlain(const char16_t* units, IsSpecial isSpecial);
    /// Encodes the character at the index, which becomes that of its last unit.
    static char* encode(QStringView text, qsizetype& at, char* out);
    static char* encodeSurrogates(QStringView text, qsizetype& at, char* out);
};

template <class IsSpecial, class Replace>
void ByteBuffer::appendText(QStringView text, IsSpecial isSpecial, Replace replace) {
    const char16_t* const units = text.utf16();
    for (qsizetype at = 0; at < text.size(); ++at) {
        const qsizetype stop = std::min(at + unitsAtOnce, text.size());
        // A pair may be cut by the stop; it takes four bytes.
        char* out = reserve((stop - at) * mostBytesPerUnit + 1);
        bool stopped = false;
        while (at < stop && !stopped) {
            if (stop - at >= block && isPlain(units + at, isSpecial)) {
                for (qsizetype i = 0; i < block; ++i)
                    out[i] = static_cast<char>(units[at + i]);
                out += block;
                at += block;
                continue;
            }
            const qsizetype end = std::min(at + block, stop);
            for (; at < end && !stopped; ++at) {
                stopped = units[at] < 0x80 && isSpecial(units[at]);
                if (!stopped) out = encode(text, at, out);
            }
        }
        end(out);
        --at;
        if (stopped) replace(static_cast<char>(units[at]));
    }
}

/// Written so that compilers compare many units at once.
template <class IsSpecial>
bool ByteBuffer::isPlain(const char16_t* units, IsSpecial isSpecial) {
    bool isOther = false;
    for (qsizetype i = 0; i < block; ++i)
        isOther |= (units[i] >= 0x80) | isSpecial(units[i]);
    return !isOther;
}

inline char* ByteBuffer::encode(QStringView text, qsizetype& at, char* out) {
    const char16_t unit = text[at].unicode();
    if (unit < 0x80) {
        *out++ = static_cast<char>(unit);
        return out;
    }
    if (QChar::isSurrogate(unit)) return encodeSurrogates(text, at, out);
    if (unit < 0x800) {
        *out++ = static_cast<char>(0xc0 | (unit >> 6));
    } else {
        *out++ = static_cast<char>(0xe0 | (unit >> 12));
        *out++ = static_cast<char>(0x80 | ((unit >> 6) & 0x3f));
    }
    *out++ = static_cast<char>(0x80 | (unit & 0x3f));
    return out;
}

}  // namespace vell
