// SPDX-License-Identifier: MIT
#include "export/json_writer.h"

#include <QChar>
#include <charconv>
#include <cmath>
#include <cstring>

namespace vell {

void JsonWriter::key(const char* name) {
    beginValue();
    buffer_ += '"';
    buffer_ += name;
    buffer_ += "\":";
    wantsComma_ = false;
}

void JsonWriter::string(QStringView text) {
    beginValue();
    buffer_ += '"';
    appendEscaped(text);
    buffer_ += '"';
}

void JsonWriter::number(qint64 value) {
    beginValue();
    buffer_ += QByteArray::number(value);
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value)) {
        null();
        return;
    }
    beginValue();
    // The fewest digits; an exponent only where there would be a long row of zeros.
    const double size = std::abs(value);
    const bool isPlain = value == 0 || (size >= 1e-6 && size < 1e15);
    char digits[32];
    const auto end = isPlain
                         ? std::to_chars(digits, std::end(digits), value, std::chars_format::fixed)
                         : std::to_chars(digits, std::end(digits), value);
    buffer_.append(digits, end.ptr - digits);
}

void JsonWriter::boolean(bool value) {
    beginValue();
    buffer_ += value ? "true" : "false";
}

void JsonWriter::null() {
    beginValue();
    buffer_ += "null";
}

void JsonWriter::open(char bracket) {
    beginValue();
    buffer_ += bracket;
    wantsComma_ = false;
}

void JsonWriter::close(char bracket) {
    if (std::exchange(wantsLineFeed_, false)) buffer_ += '\n';
    buffer_ += bracket;
    wantsComma_ = true;
}

void JsonWriter::beginValue() {
    if (std::exchange(wantsComma_, true)) buffer_ += ',';
    if (std::exchange(wantsLineFeed_, false)) buffer_ += '\n';
}

void JsonWriter::appendEscaped(QStringView text) {
    constexpr char hexDigits[] = "0123456789abcdef";
    qsizetype begin = 0;  // of what was not yet written
    const auto flush = [&](qsizetype end) {
        if (end > begin) buffer_ += text.sliced(begin, end - begin).toUtf8();
        begin = end + 1;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (QChar::isSurrogate(unit)) {
            flush(i);
            buffer_ += "\xef\xbf\xbd";
        } else if (unit == u'"' || unit == u'\\') {
            flush(i);
            buffer_ += '\\';
            buffer_ += static_cast<char>(unit);
        } else if (unit < 0x20) {
            flush(i);
            constexpr char namedEscapes[] = "btn\0fr";  // from U+0008 on
            buffer_ += '\\';
            if (unit >= 8 && unit <= 13 && namedEscapes[unit - 8] != 0) {
                buffer_ += namedEscapes[unit - 8];
            } else {
                buffer_ += "u00";
                buffer_ += hexDigits[unit >> 4];
                buffer_ += hexDigits[unit & 15];
            }
        }
    }
    flush(text.size());
}

}  // namespace vell
