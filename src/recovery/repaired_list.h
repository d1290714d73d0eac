#pragma once
// SPDX-License-Identifier: MIT
//
// Makes readable property lists of damaged ones. Objects keep their numbers; the damaged ones are
// invalid, so whatever refers to one fails when it is decoded.

#include <optional>

#include "foundation/plist/binary_property_list.h"

namespace vell::recovery {

struct RepairedList {
    foundation::BinaryPropertyList list;
    foundation::BinaryPropertyList::Ref objects = 0;  ///< the array of an archive's objects
    qint64 damagedAfter = 0;
};

/// Nothing when the array of objects can't be found.
[[nodiscard]] std::optional<RepairedList> repairedBinary(const foundation::Data& data);
[[nodiscard]] std::optional<RepairedList> repairedXml(const foundation::Data& data);

/// The array whose first element is the text "$null", as that of an archive's objects is; the
/// longest if there are several.
[[nodiscard]] std::optional<foundation::BinaryPropertyList::Ref> objectsArray(
    const foundation::BinaryPropertyList& list);

}  // namespace vell::recovery
