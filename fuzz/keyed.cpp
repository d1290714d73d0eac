// SPDX-License-Identifier: MIT
//
// Any bytes as a keyed archive in which every class is allowed: the property list in both its
// forms, the archive, all value classes and those of transcripts.

#include <array>
#include <cstddef>
#include <cstdint>

#include "foundation/keyed_unarchiver.h"
#include "foundation/print.h"
#include "transcript/archived_classes.h"
#include "value_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    foundation::setPrintFunction([](QStringView) {});
    const foundation::ClassRegistry& registry = vell::sharedClassRegistry();
    static const std::array allowed{registry.find("NSObject")};
    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    try {
        fuzz::ValueCheck().check(foundation::KeyedUnarchiver::unarchivedObject(
            foundation::Data(input), allowed, registry));
    } catch (const foundation::Error&) {  // honestly refused
    }
    return 0;
}
