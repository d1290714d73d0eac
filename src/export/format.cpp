// SPDX-License-Identifier: MIT
#include "export/format.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "export/csv.h"
#include "export/html_page.h"
#include "export/json.h"
#include "export/markdown.h"
#include "export/terminal_text.h"

namespace vell {
namespace {

qint64 markdown(const DocumentSource& source, const ByteSink& output) {
    const FormatContext& context = source.context;
    return writeMarkdown(source.log, context.contacts(), output, context.settings(),
                         source.attachments);
}

qint64 text(const DocumentSource& source, const ByteSink& output) {
    const FormatContext& context = source.context;
    return writeTerminalText(source.log, context.contacts(), output, context.settings());
}

qint64 json(const DocumentSource& source, const ByteSink& output) {
    return writeJson(source.log, output, source.attachments);
}

qint64 jsonLines(const DocumentSource& source, const ByteSink& output) {
    return writeJsonLines(source.log, source.file, output, source.attachments);
}

/// Documents in one stream are one table.
qint64 csv(const DocumentSource& source, const ByteSink& output) {
    const bool isFirst = !source.followsAnother;
    return writeCsv(source.log, source.context.contacts(), output,
                    {.file = source.file,
                     .hasHeader = isFirst,
                     .hasByteOrderMark = isFirst && source.hasByteOrderMark},
                    source.attachments);
}

QString titleOf(const DocumentSource& source) {
    if (!source.title.isEmpty() || source.file == u"-") return source.title;
    return QFileInfo(source.file).completeBaseName();
}

qint64 html(const DocumentSource& source, const ByteSink& output) {
    return writeHtmlPage(
        source.log, source.context, output,
        {.title = titleOf(source), .pictures = source.pictures, .attachments = source.attachments});
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
        {"markdown", "md", "text/markdown", "Markdown", "\n", false, false, &markdown},
        {"text", "txt", "text/plain", "plain text, for reading in a terminal", "\n", false, false,
         &text},
        {"html", "html", "text/html", "a page that looks like the timeline", "\n", true, true,
         &html},
        {"json", "json", "application/json", "every event with all its fields", "", true, false,
         &json},
        {"jsonl", "jsonl", "application/jsonl", "JSON Lines, an event a line, for databases", "",
         true, false, &jsonLines},
        {"csv", "csv", "text/csv", "a table for spreadsheets", "", false, false, &csv},
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
