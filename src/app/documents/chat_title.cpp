// SPDX-License-Identifier: MIT
#include "app/documents/chat_title.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QTimeZone>
#include <algorithm>

#include "app/documents/file_reader.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

QDateTime localTime(const foundation::Date& date) {
    const auto second = sharedCalendar().localSecond(date);
    return second ? QDateTime::fromSecsSinceEpoch(*second, QTimeZone::utc()) : QDateTime();
}

QString shownDay(QDate day) {
    const QLocale locale;
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    return locale.toString(day, format);
}

QString withDetail(const QString& title, const QString& detail) {
    return title + QStringLiteral(" — ") + detail;
}

}  // namespace

std::optional<ChatDays> chatDays(const TesselChatLog& log) {
    const auto isSent = [](const TesselChatLog::Event& event) { return !event.isSystemMessage(); };
    if (std::ranges::none_of(log.events(), isSent)) return std::nullopt;
    const QDate first = localTime(log.events().front().timestamp).date();
    const QDate last = localTime(log.events().back().timestamp).date();
    if (!first.isValid() || !last.isValid()) return std::nullopt;
    return ChatDays{first, last};
}

QString shownDays(const ChatDays& days) {
    if (days.first == days.last) return shownDay(days.first);
    //: "FIRST DAY to LAST DAY"
    return QCoreApplication::translate("ChatTitle", "%1 to %2")
        .arg(shownDay(days.first), shownDay(days.last));
}

QString chatNames(const TesselChatLog& log, const ContactsStore& contacts) {
    const QString names = shownList(sorted(log.otherUserIDs()), [&](const TesselUserID& user) {
        return shownText(senderName(user, contacts)).simplified();
    });
    return names.isEmpty() ? shownText(log.serviceID().rawValue) : names;
}

QStringList chatTitles(const TesselChatLog& log, const ContactsStore& contacts,
                       const QString& path) {
    QString title = chatNames(log, contacts);
    QStringList titles;
    if (const auto days = chatDays(log)) {
        title = withDetail(title, shownDays(*days));
        if (days->first == days->last) {
            const QTime time = localTime(log.events().front().timestamp).time();
            titles.append(title + QStringLiteral(", ") +
                          QLocale().toString(time, QLocale::ShortFormat));
        }
    }
    titles.prepend(title);
    if (!isStandardInput(path)) {
        titles.append(withDetail(title, QFileInfo(path).completeBaseName()));
        titles.append(withDetail(title, QDir::toNativeSeparators(path)));
    }
    return titles;
}

}  // namespace vell
