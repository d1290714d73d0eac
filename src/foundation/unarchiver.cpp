// SPDX-License-Identifier: MIT
#include "foundation/unarchiver.h"

#include <utility>

#include "foundation/non_keyed/reader.h"

namespace foundation {

UnarchivedObject unarchiveObjectWithData(const Data& data, const ClassRegistry& registry) {
    try {
        non_keyed::Reader reader(data, registry);
        Value root = reader.readRoot();
        return {std::move(root), reader.rootClassName()};
    } catch (const non_keyed::MalformedArchive&) {
        return Value();
    }
}

}  // namespace foundation
