// SPDX-License-Identifier: MIT
//
// Any bytes as a non-keyed archive.

#include <cstddef>
#include <cstdint>

#include "foundation/print.h"
#include "foundation/unarchiver.h"
#include "transcript/archived_classes.h"
#include "value_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    foundation::setPrintFunction([](QStringView) {});
    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    fuzz::ValueCheck().check(
        foundation::unarchiveObjectWithData(foundation::Data(input), vell::sharedClassRegistry())
            .object);
    return 0;
}
