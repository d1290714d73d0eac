#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log for people: as Markdown, and as plain text for a terminal.

#include "transcript/chat_log.h"

namespace vell {

struct FormatContext;
class Sink;

void writeMarkdown(const TesselChatLog& log, const FormatContext& context, Sink& sink);
void writeText(const TesselChatLog& log, const FormatContext& context, Sink& sink);

}  // namespace vell
