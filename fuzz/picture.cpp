// SPDX-License-Identifier: MIT
//
// Any bytes through the table that recognises pictures: a recognised one never has an empty size.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/picture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const auto picture = foundation::recognisePicture(foundation::Data(input));
    if (picture && picture->pixelSize && picture->pixelSize->isEmpty()) std::abort();
    return 0;
}
