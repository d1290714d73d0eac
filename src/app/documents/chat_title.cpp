// SPDX-License-Identifier: MIT
#include "app/documents/chat_title.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/shown_text.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

QString day(const foundation::Date& date) {
    const auto milliseconds = date.millisecondsSinceEpoch();
    if (!milliseconds) return {};
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(*milliseconds).date(),
                              QLocale::ShortFormat);
}

QString names(const TesselChatLog& log, const ContactsStore& contacts) {
    const QString names = shownList(sorted(log.otherUserIDs()), [&](const TesselUserID& user) {
        return shownText(senderName(user, contacts)).simplified();
    });
    return names.isEmpty() ? shownText(log.serviceID().rawValue) : names;
}

}  // namespace

QString chatTitle(const TesselChatLog& log, const ContactsStore& contacts) {
    const QString who = names(log, contacts);
    if (log.events().empty()) return who;
    const QString first = day(log.events().front().timestamp);
    const QString last = day(log.events().back().timestamp);
    if (first.isEmpty() || last.isEmpty()) return who;
    if (first == last) return who + QStringLiteral(" — ") + first;
    //: "NAMES — FIRST DAY to LAST DAY"
    return QCoreApplication::translate("ChatTitle", "%1 — %2 to %3").arg(who, first, last);
}

}  // namespace vell
