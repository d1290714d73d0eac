// SPDX-License-Identifier: MIT
#include "cli/format.h"

#include <algorithm>
#include <utility>

#include "export/json.h"
#include "export/markdown.h"
#include "export/terminal_text.h"

namespace vell {
namespace {

void markdown(const TesselChatLog& log, const FormatContext& context, const ByteSink& output) {
    writeMarkdown(log, context.contacts(), output, context.settings());
}

void text(const TesselChatLog& log, const FormatContext& context, const ByteSink& output) {
    writeTerminalText(log, context.contacts(), output, context.settings());
}

void json(const TesselChatLog& log, const FormatContext& /*context*/, const ByteSink& output) {
    writeJson(log, output);
}

}  // namespace

FormatContext::FormatContext(foundation::Calendar calendar, QByteArray dateLocale,
                             const ContactsStore& contacts)
    : calendar_(std::move(calendar)), dateLocale_(std::move(dateLocale)), contacts_(contacts) {}

const TextRenderSettings& FormatContext::settings() const {
    if (!settings_) {
        using Style = DateFormatter::Style;
        day_.emplace(Style::mediumDateShortTime, dateLocale_, calendar_);
        time_.emplace(Style::shortTime, dateLocale_, calendar_);
        settings_.emplace(*day_, *time_);
    }
    return *settings_;
}

std::span<const Format> formats() {
    static constexpr Format all[] = {
        {"markdown", "md", "\n", false, &markdown},
        {"text", "txt", "\n", false, &text},
        {"json", "json", "", true, &json},
    };
    return all;
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
