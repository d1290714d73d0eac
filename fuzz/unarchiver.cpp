// SPDX-License-Identifier: MIT
//
// Any bytes as a non-keyed archive: whatever is rebuilt can be described and freed, and texts are
// covered by their runs.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/attributed_string.h"
#include "foundation/print.h"
#include "foundation/unarchiver.h"
#include "transcript/archived_classes.h"

namespace {

using foundation::Value;

void check(const Value& value) {
    if (value.description().size() > 16'000'000) std::abort();
    if (const auto array = value.object<foundation::Array>()) {
        for (const Value& element : array->elements)
            check(element);
    } else if (const auto string = value.object<foundation::AttributedString>()) {
        qsizetype covered = 0;
        for (const auto& run : string->runs())
            covered += run.length;
        if (covered != string->text().size()) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    foundation::setPrintFunction([](QStringView) {});
    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    check(
        foundation::unarchiveObjectWithData(foundation::Data(input), vell::sharedClassRegistry()));
    return 0;
}
