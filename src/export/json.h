#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as JSON: one object, its events one a line, members in a fixed order; or as JSON
// Lines, each event an object of its own with the name of its file. Pictures and files are
// identified by size and SHA-256; nothing is decoded. docs/formats has the schema of both.

#include "export/attachment_paths.h"
#include "export/text_sink.h"

namespace vell {

class TesselChatLog;

// Both return the number of messages written. What the output throws passes through.

qint64 writeJson(const TesselChatLog& log, const ByteSink& output,
                 const AttachmentPaths& attachments = {});
qint64 writeJsonLines(const TesselChatLog& log, const QString& file, const ByteSink& output,
                      const AttachmentPaths& attachments = {});

}  // namespace vell
