// SPDX-License-Identifier: MIT
//
// Any bytes as a damaged transcript: what is recovered is a log like others, and says so first.

#include <QTimeZone>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/print.h"
#include "recovery/recovery.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const foundation::Calendar calendar(QTimeZone("Europe/Berlin"));
    foundation::setPrintFunction([](QStringView) {});
    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const auto recovered =
        vell::recovery::recoverChatLog(foundation::Data(input), std::nullopt, calendar);
    if (!recovered) return 0;
    const auto& events = recovered->log.events();
    if (recovered->extent.found < 1 || events.size() < 2 || events.front().sender) std::abort();
    if (recovered->extent.damagedAfter < 0 || recovered->extent.damagedAfter > input.size())
        std::abort();
    return 0;
}
