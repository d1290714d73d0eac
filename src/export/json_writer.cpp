// SPDX-License-Identifier: MIT
#include "export/json_writer.h"

#include <cmath>
#include <optional>

namespace vell {
namespace {

/// Most numbers are dates with few decimals. Finding the fewest digits of any double takes ten
/// times as long as this, which has the same result: in this range no two thousandths are the same
/// double.
std::optional<qint64> wholeThousandths(double value) {
    if (!(value > 0 && value < 1e12)) return std::nullopt;
    const qint64 thousandths = std::llround(value * 1000);
    if (static_cast<double>(thousandths) / 1000 != value) return std::nullopt;
    return thousandths;
}

}  // namespace

void JsonWriter::string(QStringView text) {
    beginValue();
    out_.append('"');
    const auto isSpecial = [](char16_t c) { return (c < 0x20) | (c == u'"') | (c == u'\\'); };
    out_.appendText(text, isSpecial, [this](char c) {
        constexpr char hexDigits[] = "0123456789abcdef";
        constexpr char namedEscapes[] = "btn\0fr";  // from U+0008 on
        out_.append('\\');
        if (c == '"' || c == '\\') {
            out_.append(c);
        } else if (c >= 8 && c <= 13 && namedEscapes[c - 8] != 0) {
            out_.append(namedEscapes[c - 8]);
        } else {
            out_.append("u00");
            out_.append(hexDigits[c >> 4]);
            out_.append(hexDigits[c & 15]);
        }
    });
    out_.append('"');
}

void JsonWriter::number(qint64 value) {
    beginValue();
    out_.appendNumber(value);
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value)) {
        null();
        return;
    }
    beginValue();
    // The fewest digits; an exponent only where there would be a long row of zeros.
    const double size = std::abs(value);
    if (const std::optional<qint64> thousandths = wholeThousandths(size)) {
        if (value < 0) out_.append('-');
        appendThousandths(*thousandths);
    } else if (value == 0 || (size >= 1e-6 && size < 1e15)) {
        out_.appendNumber(value, std::chars_format::fixed);
    } else {
        out_.appendNumber(value);
    }
}

void JsonWriter::appendThousandths(qint64 thousandths) {
    out_.appendNumber(thousandths / 1000);
    if (thousandths % 1000 == 0) return;
    out_.append('.');
    qint64 rest = thousandths % 1000;
    for (qint64 unit = 100; rest > 0; rest %= unit, unit /= 10)
        out_.append(static_cast<char>('0' + rest / unit));
}

void JsonWriter::boolean(bool value) {
    beginValue();
    value ? out_.append("true") : out_.append("false");
}

void JsonWriter::null() {
    beginValue();
    out_.append("null");
}

}  // namespace vell
