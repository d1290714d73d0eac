#pragma once
// SPDX-License-Identifier: MIT
//
// Makes a file's text safe for one line of diagnostics: no control character breaks the line, moves
// a terminal's cursor or changes the direction of what follows.

#include <QString>

namespace foundation {

/// The text with every control, line-break and direction character as "\u{1B}".
[[nodiscard]] QString printable(QString text);
/// The same of its first `maximum` UTF-16 units, with "…" where some were left out.
[[nodiscard]] QString printable(QStringView text, qsizetype maximum);

}  // namespace foundation
