// SPDX-License-Identifier: MIT
#include "transcript/byte_data.h"

#include <algorithm>

#include "foundation/checked.h"

namespace vell {
namespace {

/// Like isprint in the POSIX locale, whatever the current locale is.
bool isPrintable(unsigned char byte) {
    return byte >= 0x20 && byte <= 0x7e;
}

}  // namespace

std::vector<QByteArrayView> chunk(QByteArrayView data, qsizetype size) {
    if (size < 1) foundation::fatal("chunks without bytes");
    std::vector<QByteArrayView> result;
    for (qsizetype at = 0; at < data.size(); at += size)
        result.push_back(data.sliced(at, std::min(size, data.size() - at)));
    return result;
}

QString hexdump(QByteArrayView data, qsizetype bytesPerLine) {
    constexpr char16_t hexDigits[] = u"0123456789abcdef";
    QString result;
    result.reserve(data.size() * 4);
    for (const QByteArrayView line : chunk(data, bytesPerLine)) {
        for (const char c : line) {
            const auto byte = static_cast<unsigned char>(c);
            result += QChar(hexDigits[byte >> 4]);
            result += QChar(hexDigits[byte & 15]);
            result += u' ';
        }
        result += QStringView(u" |");
        for (const char c : line)
            result += isPrintable(static_cast<unsigned char>(c)) ? QChar(QLatin1Char(c)) : u'.';
        result += QStringView(u"|\n");
    }
    return result;
}

}  // namespace vell
