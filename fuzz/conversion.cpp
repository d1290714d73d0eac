// SPDX-License-Identifier: MIT
//
// Any bytes as a transcript: read in either form, converted, and written as Markdown.

#include <QTimeZone>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>

#include "foundation/print.h"
#include "identity/contacts_store.h"
#include "transcript/chat_log.h"
#include "transcript/load_log.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const foundation::Calendar calendar(QTimeZone("Europe/Berlin"));
    static const vell::ContactsStore contacts;
    foundation::setPrintFunction([](QStringView) {});
    if (const auto log = vell::tesselLoadLog()) log->reset();

    const QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    try {
        const auto log = vell::TesselChatLog::fromData(foundation::Data(input),
                                                       foundation::Date::distantPast, calendar);
        qint64 sequence = 0;
        for (const auto& event : log.events())
            if (event.sequence != ++sequence) std::abort();
        if (!log.events().empty() && log.generatePlainText(contacts).isEmpty()) std::abort();
    } catch (const std::exception&) {  // honestly refused
    }
    return 0;
}
