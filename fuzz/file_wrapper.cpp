// SPDX-License-Identifier: MIT
//
// Any bytes as a serialised file wrapper: what it holds lies inside the bytes, and no name means a
// folder.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/file_wrapper.h"

namespace {

void check(const foundation::FileWrapper& wrapper, const foundation::Data& input) {
    const auto& name = wrapper.filename;
    if (name && (name->isEmpty() || name->contains(u'/') || name == u"..")) std::abort();
    if (wrapper.description().isEmpty()) std::abort();
    const auto contents = wrapper.contents ? wrapper.contents->load() : std::nullopt;
    if (contents && !contents->isEmpty() &&
        (contents->begin() < input.begin() || contents->end() > input.end()))
        std::abort();
    for (const auto& child : wrapper.children)
        check(*child, input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const foundation::Data input(
        QByteArray(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size)));
    if (const auto wrapper = foundation::parseSerializedFileWrapper(input)) check(*wrapper, input);
    return 0;
}
