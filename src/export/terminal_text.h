#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log for reading in a terminal: the same story as the Markdown, without its marks. Nothing
// in a transcript can give the terminal a command: controls are shown as pictures of themselves,
// and what turns the direction of text about is left out.
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

#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// UTF-8 with line feeds only, the last line ended; nothing without events. What the output
/// throws passes through.
void writeTerminalText(const TesselChatLog& log, const ContactsStore& contacts,
                       const ByteSink& output);

}  // namespace vell
