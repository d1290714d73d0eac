// SPDX-License-Identifier: MIT
#include "cli/text_formats.h"

#include "cli/format.h"
#include "cli/sink.h"
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

ByteSink bytesTo(Sink& sink) {
    return [&sink](QByteArrayView bytes) { sink.write(bytes); };
}

}  // namespace

void writeMarkdown(const TesselChatLog& log, const FormatContext& context, Sink& sink) {
    tellDatesAsAsked(context);
    writeMarkdown(log, context.contacts, bytesTo(sink));
}

void writeText(const TesselChatLog& log, const FormatContext& context, Sink& sink) {
    tellDatesAsAsked(context);
    writeTerminalText(log, context.contacts, bytesTo(sink));
}

}  // namespace vell
