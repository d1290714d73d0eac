#pragma once
// SPDX-License-Identifier: MIT
//
// How each form of archive is written.

#include <QString>

#include "foundation/plist/binary_property_list.h"
#include "inspector/text_lines.h"

namespace vell::inspector {

/// Whether places in the file are known.
enum class Offsets { shown, hidden };

// Both return why they couldn't go on; empty at the end.
[[nodiscard]] QString writeKeyed(const foundation::BinaryPropertyList& list, Offsets offsets,
                                 TextLines& lines);
[[nodiscard]] QString writeNonKeyed(const foundation::Data& data, TextLines& lines);

}  // namespace vell::inspector
