#pragma once
// SPDX-License-Identifier: MIT
//
// Animated GIFs of plain colours, one a frame.

#include <QByteArray>
#include <QColor>
#include <QSize>
#include <vector>

namespace vell::test {

/// Without compression: the code that empties the table comes before it could grow.
inline QByteArray gif(QSize size, const std::vector<QColor>& frames, int hundredths) {
    const auto word = [](int value) {
        return QByteArray(1, static_cast<char>(value)) + static_cast<char>(value >> 8);
    };
    QByteArray bytes = "GIF89a" + word(size.width()) + word(size.height()) +
                       QByteArray::fromHex("910000");  // four colours
    for (size_t i = 0; i < 4; ++i) {
        const QColor color = i < frames.size() ? frames[i] : QColor(Qt::black);
        bytes += static_cast<char>(color.red());
        bytes += static_cast<char>(color.green());
        bytes += static_cast<char>(color.blue());
    }
    bytes += QByteArray::fromHex("21ff0b") + "NETSCAPE2.0" + QByteArray::fromHex("0301000000");
    for (size_t frame = 0; frame < frames.size(); ++frame) {
        bytes += QByteArray::fromHex("21f90400") + word(hundredths) + QByteArray::fromHex("0000");
        bytes += ',' + word(0) + word(0) + word(size.width()) + word(size.height());
        bytes += QByteArray::fromHex("0002");  // codes of three bits
        constexpr unsigned clear = 4;
        constexpr unsigned end = 5;
        QByteArray data;
        unsigned bits = 0;
        int count = 0;
        const auto put = [&](unsigned code) {
            bits |= code << count;
            for (count += 3; count >= 8; count -= 8, bits >>= 8)
                data += static_cast<char>(bits);
        };
        for (int pixel = 0; pixel < size.width() * size.height(); ++pixel) {
            if (pixel % 2 == 0) put(clear);
            put(static_cast<unsigned>(frame));
        }
        put(end);
        data += static_cast<char>(bits);
        for (qsizetype at = 0; at < data.size(); at += 255) {
            const QByteArray part = data.mid(at, 255);
            bytes += static_cast<char>(part.size()) + part;
        }
        bytes += '\0';
    }
    return bytes + ';';
}

}  // namespace vell::test
