// SPDX-License-Identifier: MIT
#include "foundation/unarchiver.h"

#include "foundation/non_keyed/reader.h"

namespace foundation {

Value unarchiveObjectWithData(const Data& data, const ClassRegistry& registry) {
    try {
        return nonkeyed::Reader(data, registry).readRoot();
    } catch (const nonkeyed::MalformedArchive&) {
        return {};
    }
}

}  // namespace foundation
