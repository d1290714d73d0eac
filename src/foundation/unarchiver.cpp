// SPDX-License-Identifier: MIT
#include "foundation/unarchiver.h"

namespace foundation {

Value unarchiveObjectWithData(const Data&, const ClassRegistry&) {
    return {};
}

}  // namespace foundation
