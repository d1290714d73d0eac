// SPDX-License-Identifier: MIT
#include "cli/text_formats.h"

#include "cli/format.h"
#include "cli/sink.h"
#include "export/terminal_text.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

void tellDatesAsAsked(const FormatContext& context) {
    setSharedDateFormat(
        context.locale.isEmpty() ? environmentDateLocale() : context.locale.toUtf8(),
        context.calendar);
}

}  // namespace

void writeMarkdown(const TesselChatLog& log, const FormatContext& context, Sink& sink) {
    tellDatesAsAsked(context);
    sink.write(log.generatePlainText(context.contacts).toUtf8());
}

void writeText(const TesselChatLog& log, const FormatContext& context, Sink& sink) {
    tellDatesAsAsked(context);
    sink.write(terminalText(log, context.contacts).toUtf8());
}

}  // namespace vell
