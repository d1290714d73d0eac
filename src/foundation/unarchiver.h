#pragma once
// SPDX-License-Identifier: MIT
//
// Unarchiver: reads a non-keyed archive (a typed stream). The stream is parsed by its grammar
// alone, so unknown classes become opaque objects; each object is rebuilt once. The format as it is
// read here is described in docs/formats/non-keyed-archive.md.

#include "foundation/class_registry.h"

namespace foundation {

/// The class method of "NSUnarchiver": the root object and its class; nothing when the bytes are no
/// such archive or are malformed. Attachment bytes are slices of `data`.
[[nodiscard]] UnarchivedObject unarchiveObjectWithData(const Data& data,
                                                       const ClassRegistry& registry);

}  // namespace foundation
