#pragma once
// SPDX-License-Identifier: MIT
//
// The title of a chat: who took part, and from which day to which.

#include <QString>

namespace vell {

class ContactsStore;
class TesselChatLog;

/// "Ada, Grace — 02.01.2006 to 05.01.2006"; one day is written once, a chat without others by its
/// service.
[[nodiscard]] QString chatTitle(const TesselChatLog& log, const ContactsStore& contacts);

}  // namespace vell
