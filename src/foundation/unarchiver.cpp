// SPDX-License-Identifier: MIT
#include "foundation/unarchiver.h"

#include <utility>

#include "foundation/non_keyed/reader.h"

namespace foundation {

UnarchivedObject unarchiveObjectWithData(const Data& data, const ClassRegistry& registry) {
    try {
        nonkeyed::Reader reader(data, registry);
        Value root = reader.readRoot();
        return {std::move(root), reader.rootClassName()};
    } catch (const nonkeyed::MalformedArchive&) {
        return Value();
    }
}

}  // namespace foundation
