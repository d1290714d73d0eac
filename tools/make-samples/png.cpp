// SPDX-License-Identifier: MIT
#include <QtEndian>
#include <array>
#include <vector>

#include "encoders.h"

namespace samples {
namespace {

QByteArray bigEndian(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

quint32 crc32(QByteArrayView bytes) {
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xedb88320 : 0);
    }
    return ~crc;
}

quint32 adler32(QByteArrayView bytes) {
    quint32 a = 1;
    quint32 b = 0;
    for (const char byte : bytes) {
        a = (a + static_cast<quint8>(byte)) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

/// One deflate block with the fixed codes.
class Deflater {
  public:
    QByteArray compress(QByteArrayView input) {
        put(1, 1);  // the last block
        put(1, 2);  // fixed codes
        std::vector<qsizetype> lastSeen(1 << 15, -1);
        for (qsizetype at = 0; at < input.size();) {
            const auto byte = [&](qsizetype i) { return static_cast<quint8>(input[i]); };
            int length = 0;
            qsizetype match = -1;
            if (at + 3 <= input.size()) {
                const quint32 key = byte(at) | byte(at + 1) << 8 | byte(at + 2) << 16;
                qsizetype& seen = lastSeen[key * 2654435761u >> 17];
                match = seen;
                seen = at;
            }
            if (match >= 0 && at - match <= 32768)
                while (length < 258 && at + length < input.size() &&
                       byte(match + length) == byte(at + length))
                    ++length;
            if (length >= 3) {
                putMatch(length, static_cast<int>(at - match));
                at += length;
            } else {
                putSymbol(byte(at++));
            }
        }
        putSymbol(256);
        put(0, (8 - filled_) % 8);
        return bytes_;
    }

  private:
    /// Lowest bit first.
    void put(quint32 bits, int count) {
        for (int i = 0; i < count; ++i) {
            if (filled_ == 8 || bytes_.isEmpty()) {
                bytes_.append('\0');
                filled_ = 0;
            }
            bytes_.back() = static_cast<char>(bytes_.back() | (bits >> i & 1) << filled_++);
        }
    }
    /// Codes go highest bit first.
    void putCode(quint32 code, int count) {
        for (int i = count - 1; i >= 0; --i)
            put(code >> i & 1, 1);
    }
    void putSymbol(int symbol) {
        if (symbol < 144) {
            putCode(static_cast<quint32>(0x30 + symbol), 8);
        } else if (symbol < 256) {
            putCode(static_cast<quint32>(0x190 + symbol - 144), 9);
        } else if (symbol < 280) {
            putCode(static_cast<quint32>(symbol - 256), 7);
        } else {
            putCode(static_cast<quint32>(0xc0 + symbol - 280), 8);
        }
    }
    void putMatch(int length, int distance) {
        // Symbols stand for ranges that double in size every four (lengths) or two (distances).
        int extra = 0;
        int base = 3;
        int symbol = 257;
        while (length != 258 && length >= base + (1 << extra)) {
            base += 1 << extra;
            ++symbol;
            if (symbol >= 265) extra = (symbol - 261) / 4;
        }
        if (length == 258) {
            putSymbol(285);
        } else {
            putSymbol(symbol);
            put(static_cast<quint32>(length - base), extra);
        }
        extra = 0;
        base = 1;
        symbol = 0;
        while (distance >= base + (1 << extra)) {
            base += 1 << extra;
            ++symbol;
            if (symbol >= 4) extra = symbol / 2 - 1;
        }
        putCode(static_cast<quint32>(symbol), 5);
        put(static_cast<quint32>(distance - base), extra);
    }

    QByteArray bytes_;
    int filled_ = 8;
};

/// The rows, each as its difference from the row above.
QByteArray filteredRows(const Canvas& canvas) {
    QByteArray rows;
    for (int y = 0; y < canvas.height(); ++y) {
        rows.append('\2');
        for (int x = 0; x < canvas.width(); ++x) {
            const Colour above = y > 0 ? canvas.at(x, y - 1) : Colour{};
            const Colour& here = canvas.at(x, y);
            rows.append(static_cast<char>(here.red - above.red));
            rows.append(static_cast<char>(here.green - above.green));
            rows.append(static_cast<char>(here.blue - above.blue));
        }
    }
    return rows;
}

QByteArray chunk(const QByteArray& type, const QByteArray& body) {
    return bigEndian(static_cast<quint32>(body.size())) + type + body +
           bigEndian(crc32(type + body));
}

}  // namespace

QByteArray encodePng(const Canvas& canvas) {
    const QByteArray rows = filteredRows(canvas);
    const QByteArray header = bigEndian(static_cast<quint32>(canvas.width())) +
                              bigEndian(static_cast<quint32>(canvas.height())) +
                              QByteArray("\x08\x02\0\0\0", 5);
    const QByteArray pixels = "\x78\x01" + Deflater().compress(rows) + bigEndian(adler32(rows));
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + chunk("IDAT", pixels) + chunk("IEND", {});
}

}  // namespace samples
