// SPDX-License-Identifier: MIT
#include "foundation/printable.h"

#include <algorithm>

namespace foundation {
namespace {

bool isPrintable(QChar c) {
    const char16_t unit = c.unicode();
    if (unit < 0x20 || (unit >= 0x7f && unit < 0xa0)) return false;
    if (unit < 0x61c) return true;
    const bool turnsDirection = unit == 0x61c || unit == 0x200e || unit == 0x200f ||
                                (unit >= 0x202a && unit <= 0x202e) ||
                                (unit >= 0x2066 && unit <= 0x2069);
    return !turnsDirection && unit != 0x2028 && unit != 0x2029;
}

}  // namespace

QString printable(QString text) {
    const auto* const first = std::find_if_not(text.cbegin(), text.cend(), isPrintable);
    if (first == text.cend()) return text;
    QString result = text.first(first - text.cbegin());
    for (const QChar* at = first; at != text.cend(); ++at) {
        if (isPrintable(*at))
            result += *at;
        else
            result += QStringLiteral("\\u{%1}").arg(QString::number(at->unicode(), 16).toUpper());
    }
    return result;
}

QString printable(QStringView text, qsizetype maximum) {
    if (text.size() <= maximum) return printable(text.toString());
    qsizetype length = maximum;
    if (text[length].isLowSurrogate() && text[length - 1].isHighSurrogate()) --length;
    return printable(text.first(length).toString()) + QChar(0x2026);
}

}  // namespace foundation
