#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as JSON: one object, its events one a line, members in a fixed order. Pictures and
// files are told by their size and SHA-256; nothing is decoded.

#include "transcript/chat_log.h"

namespace vell {

struct FormatContext;
class Sink;

void writeJson(const TesselChatLog& log, const FormatContext& context, Sink& sink);

}  // namespace vell
