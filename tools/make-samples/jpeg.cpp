// SPDX-License-Identifier: MIT
#include <QtEndian>
#include <array>
#include <cstdlib>

#include "encoders.h"

namespace samples {
namespace {

using Block = std::array<int, 64>;

/// Divisors for brightness and colour, in rows; a little finer than the usual ones.
constexpr Block lumaDivisors{5,  3,  3,  5,  7,  12, 15, 18, 4,  4,  4,  6,  8,  17, 18, 17,
                             4,  4,  5,  7,  12, 17, 21, 17, 4,  5,  7,  9,  15, 26, 24, 19,
                             5,  7,  11, 17, 20, 33, 31, 23, 7,  11, 17, 19, 24, 31, 34, 28,
                             15, 19, 23, 26, 31, 36, 36, 30, 22, 28, 29, 29, 34, 30, 31, 30};
constexpr Block chromaDivisors{5,  5,  7,  14, 30, 30, 30, 30, 5,  6,  8,  20, 30, 30, 30, 30,
                               7,  8,  17, 30, 30, 30, 30, 30, 14, 20, 30, 30, 30, 30, 30, 30,
                               30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30,
                               30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30};

constexpr Block zigzag{0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                       12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                       35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                       58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

/// The standard's own Huffman tables for brightness, used for colour too: how many codes there are
/// of each length from 1 to 16, then the symbols in the order of their codes.
constexpr char dcTable[] =
    "\x00\x01\x05\x01\x01\x01\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b";
constexpr char acTable[] =
    "\x00\x02\x01\x03\x03\x02\x04\x03\x05\x05\x04\x04\x00\x00\x01\x7d"
    "\x01\x02\x03\x00\x04\x11\x05\x12\x21\x31\x41\x06\x13\x51\x61\x07\x22\x71\x14\x32\x81\x91\xa1"
    "\x08\x23\x42\xb1\xc1\x15\x52\xd1\xf0\x24\x33\x62\x72\x82\x09\x0a\x16\x17\x18\x19\x1a\x25\x26"
    "\x27\x28\x29\x2a\x34\x35\x36\x37\x38\x39\x3a\x43\x44\x45\x46\x47\x48\x49\x4a\x53\x54\x55\x56"
    "\x57\x58\x59\x5a\x63\x64\x65\x66\x67\x68\x69\x6a\x73\x74\x75\x76\x77\x78\x79\x7a\x83\x84\x85"
    "\x86\x87\x88\x89\x8a\x92\x93\x94\x95\x96\x97\x98\x99\x9a\xa2\xa3\xa4\xa5\xa6\xa7\xa8\xa9\xaa"
    "\xb2\xb3\xb4\xb5\xb6\xb7\xb8\xb9\xba\xc2\xc3\xc4\xc5\xc6\xc7\xc8\xc9\xca\xd2\xd3\xd4\xd5\xd6"
    "\xd7\xd8\xd9\xda\xe1\xe2\xe3\xe4\xe5\xe6\xe7\xe8\xe9\xea\xf1\xf2\xf3\xf4\xf5\xf6\xf7\xf8\xf9"
    "\xfa";

class HuffmanTable {
  public:
    explicit HuffmanTable(QByteArrayView table) {
        quint32 code = 0;
        qsizetype symbol = 16;
        for (int length = 1; length <= 16; ++length, code <<= 1)
            for (int i = 0; i < table[length - 1]; ++i)
                codes_[static_cast<quint8>(table[symbol++])] = {code++, length};
    }
    [[nodiscard]] std::pair<quint32, int> operator[](int symbol) const {
        return codes_[static_cast<size_t>(symbol)];
    }

  private:
    std::array<std::pair<quint32, int>, 256> codes_{};
};

/// The cosine transform with a fixed-point table: no rounding differs between machines.
Block transformed(const Block& samples) {
    // cos(k * pi / 16) * 8192
    constexpr std::array<int, 9> cosines{8192, 8035, 7568, 6811, 5793, 4551, 3135, 1598, 0};
    const auto basis = [&](int frequency, int place) -> int64_t {
        const int angle = (2 * place + 1) * frequency % 32;
        if (frequency == 0) return cosines[4];
        const int folded = angle > 16 ? 32 - angle : angle;
        return folded > 8 ? -cosines[static_cast<size_t>(16 - folded)]
                          : cosines[static_cast<size_t>(folded)];
    };
    std::array<int64_t, 64> rows{};
    Block result{};
    for (int y = 0; y < 8; ++y)
        for (int u = 0; u < 8; ++u)
            for (int x = 0; x < 8; ++x)
                rows[static_cast<size_t>(8 * y + u)] +=
                    basis(u, x) * samples[static_cast<size_t>(8 * y + x)];
    for (int v = 0; v < 8; ++v)
        for (int u = 0; u < 8; ++u) {
            int64_t sum = 0;
            for (int y = 0; y < 8; ++y)
                sum += basis(v, y) * rows[static_cast<size_t>(8 * y + u)];
            result[static_cast<size_t>(8 * v + u)] =
                static_cast<int>((sum + (int64_t{1} << 27)) >> 28);
        }
    return result;
}

class ScanWriter {
  public:
    void writeBlock(const Block& samples, const Block& divisors, int& lastDc) {
        const Block coefficients = transformed(samples);
        Block levels{};
        for (size_t i = 0; i < 64; ++i) {
            const auto from = static_cast<size_t>(zigzag[i]);
            const int half = divisors[from] / 2;
            const int value = coefficients[from];
            levels[i] = (value < 0 ? value - half : value + half) / divisors[from];
        }
        putLevel(dc_, 0, levels[0] - lastDc);
        lastDc = levels[0];
        int zeros = 0;
        for (size_t i = 1; i < 64; ++i) {
            if (levels[i] == 0) {
                ++zeros;
                continue;
            }
            for (; zeros >= 16; zeros -= 16)
                put(ac_[0xf0]);
            putLevel(ac_, zeros << 4, levels[i]);
            zeros = 0;
        }
        if (zeros > 0) put(ac_[0]);
    }
    QByteArray finish() {
        put({0x7f, 7});
        return bytes_;
    }

  private:
    void putLevel(const HuffmanTable& table, int prefix, int level) {
        int bits = 0;
        while (std::abs(level) >> bits)
            ++bits;
        put(table[prefix | bits]);
        put({static_cast<quint32>(level < 0 ? level - 1 : level) & ((1u << bits) - 1), bits});
    }
    void put(std::pair<quint32, int> code) {
        for (int i = code.second - 1; i >= 0; --i) {
            pending_ = pending_ << 1 | (code.first >> i & 1);
            if (++filled_ < 8) continue;
            bytes_.append(static_cast<char>(pending_));
            if (pending_ == 0xff) bytes_.append('\0');
            pending_ = 0;
            filled_ = 0;
        }
    }

    HuffmanTable dc_{QByteArrayView(dcTable, sizeof dcTable - 1)};
    HuffmanTable ac_{QByteArrayView(acTable, sizeof acTable - 1)};
    QByteArray bytes_;
    quint32 pending_ = 0;
    int filled_ = 0;
};

/// One of brightness, blue and red difference, around 0.
int component(const Colour& c, int which) {
    if (which == 0) return (19595 * c.red + 38470 * c.green + 7471 * c.blue + 32768) / 65536 - 128;
    if (which == 1) return (-11059 * c.red - 21709 * c.green + 32768 * c.blue) / 65536;
    return (32768 * c.red - 27439 * c.green - 5329 * c.blue) / 65536;
}

Block blockAt(const Canvas& canvas, int left, int top, int which) {
    Block block{};
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            block[static_cast<size_t>(8 * y + x)] = component(
                canvas.at(qMin(left + x, canvas.width() - 1), qMin(top + y, canvas.height() - 1)),
                which);
    return block;
}

QByteArray bigEndian(int value) {
    return QByteArray(1, static_cast<char>(value >> 8)) + static_cast<char>(value);
}

QByteArray segment(char marker, const QByteArray& body) {
    return QByteArray("\xff") + marker + bigEndian(static_cast<int>(body.size()) + 2) + body;
}

QByteArray divisorTable(char number, const Block& divisors) {
    QByteArray body(1, number);
    for (const int place : zigzag)
        body.append(static_cast<char>(divisors[static_cast<size_t>(place)]));
    return segment('\xdb', body);
}

}  // namespace

QByteArray encodeJpeg(const Canvas& canvas) {
    QByteArray bytes("\xff\xd8");
    bytes += segment('\xe0', QByteArray("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
    bytes += divisorTable(0, lumaDivisors) + divisorTable(1, chromaDivisors);
    bytes += segment('\xc0', '\x08' + bigEndian(canvas.height()) + bigEndian(canvas.width()) +
                                 QByteArray("\3\1\x11\0\2\x11\1\3\x11\1", 10));
    bytes += segment('\xc4', '\0' + QByteArray(dcTable, sizeof dcTable - 1));
    bytes += segment('\xc4', '\x10' + QByteArray(acTable, sizeof acTable - 1));
    bytes += segment('\xda', QByteArray("\3\1\0\2\0\3\0\0\x3f\0", 10));
    ScanWriter scan;
    std::array<int, 3> lastDc{};
    for (int top = 0; top < canvas.height(); top += 8)
        for (int left = 0; left < canvas.width(); left += 8)
            for (int which = 0; which < 3; ++which)
                scan.writeBlock(blockAt(canvas, left, top, which),
                                which == 0 ? lumaDivisors : chromaDivisors,
                                lastDc[static_cast<size_t>(which)]);
    return bytes + scan.finish() + "\xff\xd9";
}

}  // namespace samples
