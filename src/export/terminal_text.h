#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log for reading in a terminal: the same content as the Markdown, without its marks.
// Nothing in a transcript can command the terminal: controls are shown as their pictures, and
// characters that change the direction of text are left out.
//
//     Jan 2, 2006, 22:04
//
//     Alice:
//         Are you coming?
//         The party starts at nine,
//           so don't be late.
//
//     Bob (22:05):
//         Yes.
//
//     * Bob has left the chat.

#include "export/text_render_settings.h"
#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// UTF-8 with line feeds only, the last line ended; nothing without events. Of the settings only
/// the formatters are used. Returns the number of messages written.
/// What the output throws passes through.
qint64 writeTerminalText(const TesselChatLog& log, const ContactsStore& contacts,
                         const ByteSink& output,
                         const TextRenderSettings& settings = TextRenderSettings());

}  // namespace vell
