#pragma once
// SPDX-License-Identifier: MIT
//
// Type strings of non-keyed archives: which values a group holds, written in letters and brackets
// ("@", "iI", "[12f]", "{_NSSize=ff}"). They are turned into a list of operations once, so that
// reading a group, which may cost a single byte, never walks the text again.

#include <QtGlobal>
#include <string_view>
#include <vector>

namespace foundation::nonkeyed {

/// One type; of an array or a struct its opening, with the types that it holds behind it.
struct TypeOp {
    char type = 0;      ///< the letter, '[' or '{'
    quint32 count = 1;  ///< how often what an array holds is repeated
    quint32 end = 0;    ///< where the next type of the same level stands
};

/// Appends what the type string says; false when it is none, or has a part that takes no bytes
/// although only whole groups of one such array make sense ("[0c]"). `end` counts from the start
/// of the list.
[[nodiscard]] bool appendTypeOps(std::string_view text, std::vector<TypeOp>& ops);

}  // namespace foundation::nonkeyed
