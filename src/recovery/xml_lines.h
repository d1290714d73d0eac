#pragma once
// SPDX-License-Identifier: MIT
//
// Corrects the lines of a property list's XML form. Archivers write each tag in a line of its own
// and know few tags, so what a line was is clear when some of its bytes are wrong. A text that has
// no lines is brought into them.

#include <QByteArray>

namespace vell::recovery {

/// The same text in lines with the tags, the indentation and the known keys corrected. A number
/// that is none becomes one that no object has.
[[nodiscard]] QByteArray withCorrectedLines(QByteArrayView xml);

}  // namespace vell::recovery
