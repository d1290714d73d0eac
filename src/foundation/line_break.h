#pragma once
// SPDX-License-Identifier: MIT

namespace foundation {

/// Whether a UTF-16 unit ends a line. CR LF is one line break of two units.
[[nodiscard]] constexpr bool isLineBreak(char16_t unit) {
    return (unit >= u'\n' && unit <= u'\r') || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

}  // namespace foundation
