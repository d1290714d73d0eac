#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as JSON: one object, its events one a line, members in a fixed order. Pictures and
// files are identified by size and SHA-256; nothing is decoded.

#include "export/text_sink.h"

namespace vell {

class TesselChatLog;

/// What the output throws passes through.
void writeJson(const TesselChatLog& log, const ByteSink& output);

}  // namespace vell
