#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log for people: as Markdown, and as plain text for a terminal.

#include <QIODevice>

#include "transcript/chat_log.h"

namespace vell {

struct FormatContext;

void writeMarkdown(const TesselChatLog& log, const FormatContext& context, QIODevice& output);
void writeText(const TesselChatLog& log, const FormatContext& context, QIODevice& output);

}  // namespace vell
