#pragma once
// SPDX-License-Identifier: MIT
//
// Type strings of non-keyed archives: which values a group holds, written in letters and brackets
// ("@", "iI", "[12f]", "{_NSSize=ff}"). They are turned into a list of operations once, so that
// reading a group, which may take a single byte, never parses the text again.

#include <QtGlobal>
#include <string_view>
#include <vector>

namespace foundation::non_keyed {

/// One type; for an array or a struct its opening, followed by the types that it holds.
struct TypeOp {
    char type = 0;      ///< the letter, '[' or '{'
    quint32 count = 1;  ///< how often the content of an array is repeated
    quint32 end = 0;    ///< index of the next type of the same level
};

/// Appends the types of a type string; false when it is malformed, or has a part that takes no
/// bytes and is not a whole group by itself ("[0c]"). `end` counts from the start of the list.
[[nodiscard]] bool appendTypeOps(std::string_view text, std::vector<TypeOp>& ops);

}  // namespace foundation::non_keyed
