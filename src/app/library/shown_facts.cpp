// SPDX-License-Identifier: MIT
#include "app/library/shown_facts.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include "app/documents/chat_contents.h"
#include "toolkit/date_formatters.h"

namespace vell {

QString shownMessages(qint64 count) {
    if (count == 1) return QCoreApplication::translate("Library", "1 message");
    return QCoreApplication::translate("Library", "%1 messages").arg(QLocale().toString(count));
}

QString shownDay(foundation::Date date) {
    const auto day = localDate(date, sharedCalendar());
    return day ? shownDay(*day) : QString();
}

QString shownDay(QDate day) {
    const QLocale locale;
    QString format = locale.dateFormat(QLocale::LongFormat);
    // The long format without its weekday, and with a short month.
    static const QRegularExpression weekday(QStringLiteral("d{3,4}[^dMy]*"));
    format.remove(weekday);
    format.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    return locale.toString(day, format.trimmed());
}

QString shownDayOfMonth(foundation::Date date) {
    const auto day = localDate(date, sharedCalendar());
    if (!day) return {};
    const QLocale locale;
    return QStringLiteral("%1 %2, %3")
        .arg(locale.toString(*day, QStringLiteral("ddd")),
             locale.toString(*day, QStringLiteral("d")), timeSeparatorFormatter().string(date));
}

}  // namespace vell
