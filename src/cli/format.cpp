// SPDX-License-Identifier: MIT
#include "cli/format.h"

#include <algorithm>

#include "export/chat_log_json.h"
#include "export/chat_log_text.h"
#include "export/terminal_text.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

void tellDatesAsAsked(const FormatContext& context) {
    setSharedDateFormat(
        context.locale.isEmpty() ? environmentDateLocale() : context.locale.toUtf8(),
        context.calendar);
}

void markdown(const TesselChatLog& log, const FormatContext& context, const ByteSink& output) {
    tellDatesAsAsked(context);
    writeMarkdown(log, context.contacts, output);
}

void text(const TesselChatLog& log, const FormatContext& context, const ByteSink& output) {
    tellDatesAsAsked(context);
    writeTerminalText(log, context.contacts, output);
}

void json(const TesselChatLog& log, const FormatContext& /*context*/, const ByteSink& output) {
    writeJson(log, output);
}

}  // namespace

std::span<const Format> formats() {
    static constexpr Format kFormats[] = {
        {"markdown", "md", "\n", false, &markdown},
        {"text", "txt", "\n", false, &text},
        {"json", "json", "", true, &json},
    };
    return kFormats;
}

const Format* findFormat(const QString& name) {
    const auto all = formats();
    const auto at = std::find_if(all.begin(), all.end(), [&name](const Format& format) {
        return name == QLatin1StringView(format.name) ||
               name == QLatin1StringView(format.extension);
    });
    return at == all.end() ? nullptr : &*at;
}

}  // namespace vell
