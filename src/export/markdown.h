#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as Markdown.

#include "export/attachment_paths.h"
#include "export/text_render_settings.h"
#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// The whole document.
[[nodiscard]] QString generatePlainText(const TesselChatLog& log, const ContactsStore& contacts,
                                        const TextRenderSettings& settings = TextRenderSettings());

/// Writes it piece by piece. Returns the number of messages written.
/// What the output throws passes through.
qint64 writeMarkdown(const TesselChatLog& log, const ContactsStore& contacts,
                     const ByteSink& output,
                     const TextRenderSettings& settings = TextRenderSettings(),
                     const AttachmentPaths& attachments = {});

}  // namespace vell
