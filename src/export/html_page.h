#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as one HTML file that looks like the timeline, light or dark as the reader prefers. It
// needs nothing else, unless its pictures are to be beside it: styles are in it, there is no
// script, and a policy in its head forbids whatever else. Texts, names and addresses come from
// other people, so all of them pass appendHtml().

#include <chrono>
#include <optional>

#include "export/attachment_paths.h"
#include "export/byte_buffer.h"
#include "export/format.h"
#include "export/text_sink.h"

namespace vell {

struct HtmlPageOptions {
    QString title;
    Pictures pictures = Pictures::embed;
    AttachmentPaths attachments{};
};

/// Returns the number of messages written. What the output throws passes through.
qint64 writeHtmlPage(const TesselChatLog& log, const FormatContext& context, const ByteSink& output,
                     const HtmlPageOptions& options);

/// The day on the calendar's clocks; nothing for what no calendar expresses.
[[nodiscard]] std::optional<std::chrono::year_month_day> localDay(
    foundation::Date date, const foundation::Calendar& calendar);
/// The anchor of a day in a page: "day-2009-07-04". When a chat comes to a day again, only the
/// first time has it.
[[nodiscard]] QString dayAnchor(const std::optional<std::chrono::year_month_day>& day);

/// The text as a text or an attribute's value in quotation marks: no part of it is markup. Line
/// breaks become elements in a text and references in an attribute.
enum class HtmlPlace { text, attribute };
void appendHtml(ByteBuffer& out, QStringView text, HtmlPlace place = HtmlPlace::text);

}  // namespace vell
