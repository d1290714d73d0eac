#pragma once
// SPDX-License-Identifier: MIT
//
// Turns the XML form of a property list into the binary one, so that archives have one reader. It
// works as it reads, without a tree; the result is at most a few times larger than the text.

#include <optional>

#include "foundation/data.h"

namespace foundation {

/// A binary property list of the same content; nothing when the XML is malformed. A dictionary
/// whose only entry is an integer "CF$UID" becomes a UID, for which XML has no element.
[[nodiscard]] std::optional<Data> binaryFromXml(const Data& xml);

}  // namespace foundation
