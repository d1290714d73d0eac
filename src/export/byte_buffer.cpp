// SPDX-License-Identifier: MIT
#include "export/byte_buffer.h"

namespace vell {

void ByteBuffer::append(QByteArrayView bytes) {
    if (next_ && bytes.size() > pieceSize / 2) {
        flush();
        next_(bytes);
    } else {
        append(bytes.data(), bytes.size());
    }
}

void ByteBuffer::flush() {
    if (const qsizetype size = std::exchange(size_, 0); size > 0)
        next_(QByteArrayView(begin_, size));
}

QByteArray ByteBuffer::take() {
    return {begin_, std::exchange(size_, 0)};
}

void ByteBuffer::makeRoom(qsizetype bytes) {
    if (next_) flush();
    if (capacity_ - size_ >= bytes) return;
    capacity_ = next_ ? pieceSize : std::max({smallestCapacity, capacity_ * 2, size_ + bytes});
    bytes_.resize(capacity_);
    begin_ = bytes_.data();
}

char* ByteBuffer::encodeSurrogates(QStringView text, qsizetype& at, char* out) {
    char32_t character = QChar::ReplacementCharacter;
    if (text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate()) {
        character = QChar::surrogateToUcs4(text[at], text[at + 1]);
        ++at;
        *out++ = static_cast<char>(0xf0 | (character >> 18));
        *out++ = static_cast<char>(0x80 | ((character >> 12) & 0x3f));
    } else {
        *out++ = static_cast<char>(0xe0 | (character >> 12));
    }
    *out++ = static_cast<char>(0x80 | ((character >> 6) & 0x3f));
    *out++ = static_cast<char>(0x80 | (character & 0x3f));
    return out;
}

}  // namespace vell
