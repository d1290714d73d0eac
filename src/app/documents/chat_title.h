#pragma once
// SPDX-License-Identifier: MIT
//
// The title of a chat: who took part, and from which day to which.

#include <QDate>
#include <QStringList>
#include <optional>

namespace vell {

class ContactsStore;
class TesselChatLog;

/// The first and the last day of a chat.
struct ChatDays {
    QDate first;
    QDate last;
};

/// Nothing for a chat in which nobody wrote: it is dated by its file only.
[[nodiscard]] std::optional<ChatDays> chatDays(const TesselChatLog& log);
/// "02.01.2006 to 05.01.2006", with years in full; one day is written once.
[[nodiscard]] QString shownDays(const ChatDays& days);
/// "Ada, Grace", or the service of a chat without others.
[[nodiscard]] QString chatNames(const TesselChatLog& log, const ContactsStore& contacts);

/// What a chat's window may be called, the shortest first: "Ada, Grace — 02.01.2006", and longer
/// ones that distinguish it from windows that are called the same: with the time, the file's name,
/// its path.
[[nodiscard]] QStringList chatTitles(const TesselChatLog& log, const ContactsStore& contacts,
                                     const QString& path);

}  // namespace vell
