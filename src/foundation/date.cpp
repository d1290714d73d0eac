// SPDX-License-Identifier: MIT
#include "foundation/date.h"

#include <QDateTime>
#include <QLocale>
#include <chrono>
#include <cmath>

namespace foundation {
namespace {

using namespace std::chrono;

// All in the proleptic Gregorian calendar.
constexpr sys_seconds reference = sys_days(2001y / January / 1);
constexpr sys_time<milliseconds> begin = sys_days(1y / January / 1);
constexpr sys_time<milliseconds> end = sys_days(10000y / January / 1);
constexpr qint64 referenceMilliseconds = milliseconds(reference.time_since_epoch()).count();

/// Writes `value` with leading zeros in exactly `width` digits.
QChar* appendDigits(QChar* out, int value, int width) {
    for (int i = width - 1; i >= 0; --i, value /= 10)
        out[i] = QChar(u'0' + value % 10);
    return out + width;
}

QString formatted(qint64 sinceEpoch, QChar separator, bool fraction, QLatin1StringView zone) {
    const sys_time<milliseconds> instant{milliseconds(sinceEpoch)};
    const sys_days day = floor<days>(instant);
    const year_month_day date(day);
    const hh_mm_ss<milliseconds> time(instant - day);
    QChar text[32];
    QChar* out = appendDigits(text, int(date.year()), 4);
    *out++ = u'-';
    out = appendDigits(out, int(unsigned(date.month())), 2);
    *out++ = u'-';
    out = appendDigits(out, int(unsigned(date.day())), 2);
    *out++ = separator;
    out = appendDigits(out, int(time.hours().count()), 2);
    *out++ = u':';
    out = appendDigits(out, int(time.minutes().count()), 2);
    *out++ = u':';
    out = appendDigits(out, int(time.seconds().count()), 2);
    if (fraction) {
        *out++ = u'.';
        out = appendDigits(out, int(time.subseconds().count()), 3);
    }
    return QString(text, out - text) + zone;
}

}  // namespace

const Date Date::distantPast{-63113904000.0};

bool Date::isDistantPast() const {
    constexpr double julian = -63114076800.0;
    return *this == distantPast || secondsSinceReferenceDate == julian;
}

Date Date::now() {
    return fromMillisecondsSinceEpoch(QDateTime::currentMSecsSinceEpoch());
}

Date Date::fromMillisecondsSinceEpoch(qint64 milliseconds) {
    return {static_cast<double>(milliseconds - referenceMilliseconds) / 1000.0};
}

std::optional<qint64> Date::millisecondsSinceEpoch() const {
    // Far outside, and not a number, before anything is converted to an integer.
    if (!(std::abs(secondsSinceReferenceDate) < 1e12)) return std::nullopt;
    auto result = static_cast<qint64>(std::floor(secondsSinceReferenceDate * 1000.0));
    result += referenceMilliseconds;
    // A millisecond as a double of seconds is rarely exact. Rounding down means: the last
    // millisecond whose own double isn't later, so that whole milliseconds survive the way back.
    if (fromMillisecondsSinceEpoch(result).secondsSinceReferenceDate > secondsSinceReferenceDate)
        --result;
    else if (fromMillisecondsSinceEpoch(result + 1).secondsSinceReferenceDate <=
             secondsSinceReferenceDate)
        ++result;
    if (result < begin.time_since_epoch().count() || result >= end.time_since_epoch().count())
        return std::nullopt;
    return result;
}

std::optional<QString> Date::iso8601() const {
    const auto milliseconds = millisecondsSinceEpoch();
    if (!milliseconds) return std::nullopt;
    return formatted(*milliseconds, u'T', true, QLatin1StringView("Z"));
}

QString Date::description() const {
    const auto milliseconds = (isDistantPast() ? distantPast : *this).millisecondsSinceEpoch();
    if (!milliseconds)
        return QString::number(secondsSinceReferenceDate, 'g', QLocale::FloatingPointShortest);
    return formatted(*milliseconds, u' ', false, QLatin1StringView(" +0000"));
}

}  // namespace foundation
