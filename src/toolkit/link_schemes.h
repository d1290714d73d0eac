#pragma once
// SPDX-License-Identifier: MIT
//
// The kinds of addresses that a click may lead to; all others are shown and no more.

#include <QLatin1StringView>
#include <QStringView>
#include <algorithm>
#include <array>

namespace vell {

inline constexpr std::array plainSchemes{"http", "https", "mailto",   "ftp",
                                         "aim",  "xmpp",  "facetime", "tel"};

/// Whether the address begins with one of them and a colon, and holds nothing that programs leave
/// out or take for another character.
[[nodiscard]] inline bool hasPlainScheme(QStringView address) {
    const auto isAmbiguous = [](QChar c) {
        return c.unicode() <= 0x20 || c == u'\\' || c.category() == QChar::Other_Control;
    };
    if (std::any_of(address.begin(), address.end(), isAmbiguous)) return false;
    const QStringView scheme = address.first(std::max<qsizetype>(address.indexOf(u':'), 0));
    return std::any_of(plainSchemes.begin(), plainSchemes.end(), [&](const char* plain) {
        return scheme.compare(QLatin1StringView(plain), Qt::CaseInsensitive) == 0;
    });
}

}  // namespace vell
