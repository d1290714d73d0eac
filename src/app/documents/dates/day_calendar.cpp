// SPDX-License-Identifier: MIT
#include "app/documents/dates/day_calendar.h"

#include <QEvent>
#include <QPainter>
#include <QTableView>
#include <QTextCharFormat>
#include <algorithm>
#include <cmath>
#include <utility>

#include "toolkit/mixed_color.h"

namespace vell {
namespace {

constexpr int dayGap = 2;  // points around a day
constexpr qreal dayCorner = 6;
constexpr float faintest = 0.14f;
constexpr float strongest = 0.85f;
constexpr float otherMonth = 0.35f;

/// The colour of the two that is easier to read on this one.
QColor legible(const QColor& on, const QColor& a, const QColor& b) {
    const auto distance = [&on](const QColor& color) {
        return std::abs(qGray(color.rgb()) - qGray(on.rgb()));
    };
    return distance(a) >= distance(b) ? a : b;
}

bool isBefore(const ChatDay& day, QDate date) {
    return day.date < date;
}

}  // namespace

DayCalendar::DayCalendar(QWidget* parent) : QCalendarWidget(parent) {
    setNavigationBarVisible(false);
    setVerticalHeaderFormat(NoVerticalHeader);
    setHorizontalHeaderFormat(ShortDayNames);
    setFirstDayOfWeek(locale().firstDayOfWeek());
    setHeaderColors();
}

void DayCalendar::setHeaderColors() {
    QTextCharFormat header;
    header.setForeground(
        mixed(palette().color(QPalette::Base), palette().color(QPalette::Text), 0.6f));
    header.setBackground(palette().color(QPalette::Base));
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        setWeekdayTextFormat(day, header);
    setHeaderTextFormat(header);
}

void DayCalendar::setDays(std::vector<ChatDay> days) {
    days_ = std::move(days);
    most_ = 0;
    for (const ChatDay& day : days_)
        most_ = std::max(most_, day.messages);
    if (!days_.empty()) setDateRange(days_.front().date, days_.back().date);
    updateCells();
}

const ChatDay* DayCalendar::day(QDate date) const {
    const auto at = std::lower_bound(days_.begin(), days_.end(), date, isBefore);
    return at != days_.end() && at->date == date ? &*at : nullptr;
}

const ChatDay* DayCalendar::neighbour(QDate date, int direction) const {
    const auto from = direction < 0 ? date : date.addDays(1);
    const auto at = std::lower_bound(days_.begin(), days_.end(), from, isBefore);
    if (direction < 0) return at == days_.begin() ? nullptr : &*std::prev(at);
    return at == days_.end() ? nullptr : &*at;
}

void DayCalendar::changeEvent(QEvent* event) {
    QCalendarWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) setHeaderColors();
}

void DayCalendar::paintCell(QPainter* painter, const QRect& rect, QDate date) const {
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const QColor accent = palette().color(QPalette::Highlight);
    const ChatDay* day = this->day(date);
    QColor fill = base;
    if (day) {
        // Few days are very busy: by the logarithm the others can be told apart, too.
        const auto part =
            static_cast<float>(std::log1p(static_cast<double>(day->messages)) /
                               std::log1p(static_cast<double>(std::max<qsizetype>(most_, 1))));
        fill = mixed(base, accent, faintest + (strongest - faintest) * part);
    }
    const bool isInMonth = date.month() == monthShown() && date.year() == yearShown();
    if (!isInMonth) fill = mixed(base, fill, otherMonth);

    const QRectF cell = QRectF(rect).adjusted(dayGap, dayGap, -dayGap, -dayGap);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillRect(rect, base);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    if (day) painter->drawRoundedRect(cell, dayCorner, dayCorner);
    if (date == selectedDate()) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(text, 2));
        painter->drawRoundedRect(cell.adjusted(1, 1, -1, -1), dayCorner - 1, dayCorner - 1);
    }
    QColor ink = day ? legible(fill, text, base) : text;
    if (!day || !isInMonth) ink = mixed(fill, ink, day ? 0.6f : isInMonth ? 0.5f : 0.25f);
    painter->setPen(ink);
    QFont font = painter->font();
    font.setBold(day && isInMonth);
    painter->setFont(font);
    painter->drawText(rect, Qt::AlignCenter, locale().toString(date.day()));
    painter->restore();
}

}  // namespace vell
