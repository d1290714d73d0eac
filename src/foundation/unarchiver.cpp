// SPDX-License-Identifier: MIT
#include "foundation/unarchiver.h"

#include "foundation/non_keyed_reader.h"

namespace foundation {

Value unarchiveObjectWithData(const Data& data, const ClassRegistry& registry) {
    try {
        return NonKeyedReader(data, registry).readRoot();
    } catch (const MalformedArchive&) {
        return {};
    }
}

}  // namespace foundation
