// SPDX-License-Identifier: MIT
//
// Any bytes as a transcript: read in either form, converted, and written as Markdown, with no more
// memory handed out in all than a multiple of their number.

#include <QTimeZone>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>

#include "export/expansion.h"
#include "export/markdown.h"
#include "foundation/print.h"
#include "identity/contacts/contacts_store.h"
#include "transcript/chat_log.h"
#include "transcript/load_log.h"

/// Only sanitizers have it.
extern "C" __attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(
    void (*afterMalloc)(const volatile void*, std::size_t),
    void (*beforeFree)(const volatile void*));

namespace {

/// Bytes handed out so far, those included that were given back.
std::size_t allocated = 0;

void countAllocations() {
    if (__sanitizer_install_malloc_and_free_hooks)
        __sanitizer_install_malloc_and_free_hooks(
            [](const volatile void*, std::size_t size) { allocated += size; },
            [](const volatile void*) {});
}

/// What reading and writing hand out at most: each bound of theirs is a multiple of the input and
/// some 64 MiB, and what grows is copied a few times.
std::size_t mostAllocated(std::size_t inputSize) {
    return (std::size_t(1) << 30) + 512 * inputSize;
}

void convert(const QByteArray& input) {
    static const foundation::Calendar calendar(QTimeZone("Europe/Berlin"));
    static const vell::ContactsStore contacts;
    vell::TesselLoadLog loadLog;
    const auto log = vell::TesselChatLog::fromData(
        foundation::Data(input), foundation::Date::distantPast, calendar, &loadLog);
    qint64 sequence = 0;
    for (const auto& event : log.events())
        if (event.sequence != ++sequence) std::abort();
    const auto write = [&](const vell::ByteSink& sink) {
        vell::writeMarkdown(log, contacts, sink);
    };
    if (vell::expandsBeyond(vell::exportLimit(input.size()), vell::ExpansionBound(log), contacts,
                            write))
        return;
    if (!log.events().empty() && vell::generatePlainText(log, contacts).isEmpty()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const bool isCounting = (countAllocations(), true);
    foundation::setPrintFunction([](QStringView) {});

    allocated = 0;
    try {
        convert(QByteArray(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size)));
    } catch (const std::exception&) {  // honestly refused
    }
    if (isCounting && allocated > mostAllocated(size)) std::abort();
    return 0;
}
