// SPDX-License-Identifier: MIT
#include "foundation/date.h"

#include <QDateTime>
#include <QLocale>
#include <cmath>

namespace foundation {
namespace {

// All in the proleptic Gregorian calendar.
constexpr qint64 kReferenceFromEpoch = 978307200;      // 2001-01-01 from 1970-01-01, seconds
constexpr qint64 kFirstMillisecond = -62135596800000;  // 0001-01-01T00:00:00.000Z from 1970
constexpr qint64 kEndMillisecond = 253402300800000;    // 10000-01-01T00:00:00.000Z from 1970
constexpr qint64 kMillisecondsPerDay = 86400000;

struct CivilDate {
    int year;
    int month;
    int day;
};

/// The civil date of a day counted from 1970-01-01; years start in March while it computes, so that
/// the leap day is the last one.
CivilDate civilDate(qint64 daysSinceEpoch) {
    const qint64 days = daysSinceEpoch + 719468;  // from 0000-03-01
    const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<int>(days - era * 146097);
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shiftedMonth = (5 * dayOfYear + 2) / 153;
    const int day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const int month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    return {static_cast<int>(yearOfEra + era * 400) + (month <= 2 ? 1 : 0), month, day};
}

/// Writes `value` with leading zeros in exactly `width` digits.
QChar* appendDigits(QChar* out, int value, int width) {
    for (int i = width - 1; i >= 0; --i, value /= 10)
        out[i] = QChar(u'0' + value % 10);
    return out + width;
}

QString formatted(qint64 milliseconds, QChar separator, bool fraction, QLatin1StringView zone) {
    qint64 day = milliseconds / kMillisecondsPerDay;
    auto inDay = static_cast<int>(milliseconds % kMillisecondsPerDay);
    if (inDay < 0) {
        inDay += kMillisecondsPerDay;
        --day;
    }
    const CivilDate date = civilDate(day);
    QChar text[32];
    QChar* out = appendDigits(text, date.year, 4);
    *out++ = u'-';
    out = appendDigits(out, date.month, 2);
    *out++ = u'-';
    out = appendDigits(out, date.day, 2);
    *out++ = separator;
    out = appendDigits(out, inDay / 3600000, 2);
    *out++ = u':';
    out = appendDigits(out, inDay / 60000 % 60, 2);
    *out++ = u':';
    out = appendDigits(out, inDay / 1000 % 60, 2);
    if (fraction) {
        *out++ = u'.';
        out = appendDigits(out, inDay % 1000, 3);
    }
    return QString(text, out - text) + zone;
}

}  // namespace

const Date Date::distantPast{-63113904000.0};

bool Date::isDistantPast() const {
    constexpr double kJulian = -63114076800.0;
    return *this == distantPast || secondsSinceReferenceDate == kJulian;
}

Date Date::now() {
    return fromMillisecondsSinceEpoch(QDateTime::currentMSecsSinceEpoch());
}

Date Date::fromMillisecondsSinceEpoch(qint64 milliseconds) {
    return {static_cast<double>(milliseconds - kReferenceFromEpoch * 1000) / 1000.0};
}

std::optional<qint64> Date::millisecondsSinceEpoch() const {
    // Far outside, and not a number, before anything is converted to an integer.
    if (!(std::abs(secondsSinceReferenceDate) < 1e12)) return std::nullopt;
    auto result = static_cast<qint64>(std::floor(secondsSinceReferenceDate * 1000.0));
    result += kReferenceFromEpoch * 1000;
    // A millisecond as a double of seconds is rarely exact. Rounding down means: the last
    // millisecond whose own double isn't later, so that whole milliseconds survive the way back.
    if (fromMillisecondsSinceEpoch(result).secondsSinceReferenceDate > secondsSinceReferenceDate)
        --result;
    else if (fromMillisecondsSinceEpoch(result + 1).secondsSinceReferenceDate <=
             secondsSinceReferenceDate)
        ++result;
    if (result < kFirstMillisecond || result >= kEndMillisecond) return std::nullopt;
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
