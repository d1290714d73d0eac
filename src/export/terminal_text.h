#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log for reading in a terminal: the same story as the Markdown, without its marks. Nothing
// in a transcript can give the terminal a command: controls are shown as pictures of themselves.
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

#include <QString>

namespace vell {

class ContactsStore;
class TesselChatLog;

/// Line feeds only, the last line ended; empty without events.
[[nodiscard]] QString terminalText(const TesselChatLog& log, const ContactsStore& contacts);

}  // namespace vell
