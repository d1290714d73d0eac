#pragma once
// SPDX-License-Identifier: MIT
//
// Unarchiver: reads a non-keyed archive (a typed stream). The whole stream is parsed by its grammar
// alone, so classes that nobody knows are kept as opaque objects; then the root is rebuilt from it,
// each object once. docs/formats/non-keyed-archive.md tells the format as it is read here.

#include "foundation/class_registry.h"

namespace foundation {

/// The class method of "NSUnarchiver": the root object and its class; nothing when the bytes are no
/// such archive or are malformed. Attachment bytes are slices of `data`.
[[nodiscard]] UnarchivedObject unarchiveObjectWithData(const Data& data,
                                                       const ClassRegistry& registry);

}  // namespace foundation
