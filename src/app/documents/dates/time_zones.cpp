// SPDX-License-Identifier: MIT
#include "app/documents/dates/time_zones.h"

#include <QActionGroup>
#include <QTimeZone>
#include <utility>

#include "app/desktop/desktop.h"
#include "app/desktop/settings.h"
#include "app/documents/dates/time_zone_dialog.h"
#include "foundation/calendar.h"
#include "toolkit/date_formatters.h"

namespace vell {

QString cityOf(const QString& zone) {
    return zone.section(u'/', -1).replace(u'_', u' ');
}

void useTimeZone(const QString& zone) {
    auto calendar = zone.isEmpty() ? std::nullopt : foundation::Calendar::named(zone.toLatin1());
    setSharedDateFormat(environmentDateLocale(),
                        calendar ? *std::move(calendar) : foundation::Calendar::current());
}

TimeZoneMenu::TimeZoneMenu(Settings& settings, QWidget& window)
    : QMenu(&window), settings_(settings), window_(window) {
    setTitle(tr("Time &Zone"));
    connect(this, &QMenu::aboutToShow, this, &TimeZoneMenu::fill);
}

void TimeZoneMenu::fill() {
    clear();
    delete findChild<QActionGroup*>();
    auto* group = new QActionGroup(this);
    const auto add = [&](const QString& text, const QString& zone) {
        QAction* action = addAction(text, this, [this, zone] { settings_.setTimeZone(zone); });
        action->setCheckable(true);
        action->setChecked(settings_.timeZone() == zone);
        group->addAction(action);
    };
    add(tr("&As on This Computer"), {});
    addSeparator();
    const QString utc = QStringLiteral("UTC");
    add(utc, utc);
    for (const QString& zone : settings_.recentTimeZones())
        if (zone != utc) add(menuText(cityOf(zone)), zone);
    addSeparator();
    addAction(tr("&Other …"), this, &TimeZoneMenu::chooseOther);
}

void TimeZoneMenu::chooseOther() {
    auto* dialog = new TimeZoneDialog(settings_.timeZone(), &window_);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &TimeZoneDialog::chosen, &settings_, &Settings::setTimeZone);
    dialog->open();
}

}  // namespace vell
