// SPDX-License-Identifier: MIT
#include <algorithm>
#include <map>

#include "encoders.h"

namespace samples {
namespace {

constexpr int codeSize = 8;

QByteArray littleEndian(int value) {
    return QByteArray(1, static_cast<char>(value)) + static_cast<char>(value >> 8);
}

/// The colour as one of a cube of 6 x 7 x 6.
int paletteIndex(const Colour& colour) {
    const auto step = [](int channel, int steps) { return (channel * (steps - 1) + 127) / 255; };
    return (step(colour.red, 6) * 7 + step(colour.green, 7)) * 6 + step(colour.blue, 6);
}

QByteArray palette() {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        const int index = std::min(i, 6 * 7 * 6 - 1);
        bytes.append(static_cast<char>(index / 42 * 255 / 5));
        bytes.append(static_cast<char>(index / 6 % 7 * 255 / 6));
        bytes.append(static_cast<char>(index % 6 * 255 / 5));
    }
    return bytes;
}

class LzwWriter {
  public:
    QByteArray compress(const QByteArray& indices) {
        clear();
        int prefix = -1;
        for (const char byte : indices) {
            const int index = static_cast<quint8>(byte);
            if (prefix < 0) {
                prefix = index;
                continue;
            }
            const auto known = table_.find({prefix, index});
            if (known != table_.end()) {
                prefix = known->second;
                continue;
            }
            put(prefix);
            if (next_ == 4096) {
                clear();
            } else {
                if (next_ == 1 << width_) ++width_;
                table_[{prefix, index}] = next_++;
            }
            prefix = index;
        }
        put(prefix);
        put(endCode);
        if (filled_ > 0) bytes_.append(static_cast<char>(pending_));
        return bytes_;
    }

  private:
    static constexpr int clearCode = 1 << codeSize;
    static constexpr int endCode = clearCode + 1;

    void clear() {
        put(clearCode);
        table_.clear();
        next_ = endCode + 1;
        width_ = codeSize + 1;
    }
    void put(int code) {
        pending_ |= static_cast<quint32>(code) << filled_;
        for (filled_ += width_; filled_ >= 8; filled_ -= 8) {
            bytes_.append(static_cast<char>(pending_));
            pending_ >>= 8;
        }
    }

    std::map<std::pair<int, int>, int> table_;
    QByteArray bytes_;
    quint32 pending_ = 0;
    int filled_ = 0;
    int next_ = 0;
    int width_ = codeSize + 1;
};

QByteArray subBlocks(const QByteArray& bytes) {
    QByteArray blocks;
    for (qsizetype at = 0; at < bytes.size(); at += 255) {
        const QByteArray block = bytes.mid(at, 255);
        blocks += static_cast<char>(block.size()) + block;
    }
    return blocks + '\0';
}

}  // namespace

QByteArray encodeGif(const std::vector<Canvas>& frames, int delay) {
    const QByteArray size =
        littleEndian(frames.front().width()) + littleEndian(frames.front().height());
    QByteArray bytes = "GIF89a" + size + QByteArray("\xf7\0\0", 3) + palette();
    bytes += QByteArray("\x21\xff\x0bNETSCAPE2.0\x03\x01\0\0\0", 19);
    for (const Canvas& frame : frames) {
        QByteArray indices;
        for (int y = 0; y < frame.height(); ++y)
            for (int x = 0; x < frame.width(); ++x)
                indices.append(static_cast<char>(paletteIndex(frame.at(x, y))));
        bytes += QByteArray("\x21\xf9\x04\x04", 4) + littleEndian(delay) + QByteArray(2, '\0');
        bytes += ',' + QByteArray(4, '\0') + size + '\0' + static_cast<char>(codeSize) +
                 subBlocks(LzwWriter().compress(indices));
    }
    return bytes + ';';
}

}  // namespace samples
