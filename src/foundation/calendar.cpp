// SPDX-License-Identifier: MIT
#include "foundation/calendar.h"

#include <QDateTime>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <utility>

namespace foundation {
namespace {

using namespace std::chrono;

/// The bare zone name of a TZ value: no ":" in front, no path of the zone database.
QByteArray bareName(QByteArray zone) {
    if (zone.startsWith(':')) zone.remove(0, 1);
    if (!zone.startsWith('/')) return zone;
    constexpr QByteArrayView directory("/zoneinfo/");
    auto at = zone.indexOf(directory);
    if (at < 0) {  // "/etc/localtime" and the like point into the database
        zone = QFileInfo(QString::fromLocal8Bit(zone)).canonicalFilePath().toLocal8Bit();
        at = zone.indexOf(directory);
    }
    return at < 0 ? zone : zone.mid(at + directory.size());
}

/// What the C library, which reads TZ, has at that second; null when it is out of range.
const std::tm* localTime(qint64 second, std::tm& buffer) {
    const auto time = static_cast<std::time_t>(second);
    return localtime_r(&time, &buffer);
}

/// From 1970 to the start of a year.
constexpr qint64 secondsTo(year begun) {
    return sys_seconds(sys_days(begun / January / 1)).time_since_epoch().count();
}

/// A second at which every zone has the same offset and the same name. The calendar repeats itself
/// after 400 years, so distant instants are looked up in the first such cycle that only rules
/// govern: libraries that step through the rules year by year stay fast.
qint64 equivalentSecond(qint64 second) {
    constexpr qint64 cycle =
        seconds(sys_days(2500y / January / 1) - sys_days(2100y / January / 1)).count();
    constexpr qint64 firstYear = secondsTo(1y);
    constexpr qint64 firstOfCycle = secondsTo(2100y);
    if (second < firstYear) return firstYear;
    return second < firstOfCycle ? second : firstOfCycle + (second - firstOfCycle) % cycle;
}

std::optional<qint64> secondSinceEpoch(Date date) {
    constexpr double limit = 1.8e14;  // what ICU's dates can express
    const double whole = std::floor(date.secondsSinceReferenceDate);
    if (!(std::abs(whole) < limit)) return std::nullopt;
    return static_cast<qint64>(whole) + secondsTo(2001y);
}

/// NaN is the same instant as itself here: a message that inherits it opens nothing new.
bool isSameInstant(Date a, Date b) {
    return std::bit_cast<quint64>(a.secondsSinceReferenceDate) ==
               std::bit_cast<quint64>(b.secondsSinceReferenceDate) ||
           a == b;
}

}  // namespace

Calendar::Calendar(const QTimeZone& zone) : zone_(zone) {}

std::optional<Calendar> Calendar::named(const QByteArray& zone) {
    if (isRule(zone)) return std::nullopt;
    const QByteArray name = bareName(zone);
    if (name.isEmpty()) return Calendar(QTimeZone::utc());
    const QTimeZone found(name);
    if (!found.isValid()) return std::nullopt;
    return Calendar(found);
}

Calendar Calendar::current() {
    if (!qEnvironmentVariableIsSet("TZ")) {
        const QTimeZone zone = QTimeZone::systemTimeZone();
        return Calendar(zone.isValid() ? zone : QTimeZone::utc());
    }
    const QByteArray name = qgetenv("TZ");
    if (isRule(name)) {
        tzset();
        Calendar calendar(QTimeZone::utc());
        calendar.rule_ = name;
        return calendar;
    }
    if (auto calendar = named(name)) return *std::move(calendar);
    [[maybe_unused]] static const int reported =
        std::fprintf(stderr, "Unknown time zone in TZ, taking UTC: %s\n", name.constData());
    return Calendar(QTimeZone::utc());
}

bool Calendar::isRule(const QByteArray& zone) {
    static const QRegularExpression start(
        QStringLiteral("^:?([A-Za-z]{3,}|<[A-Za-z0-9+-]{3,}>)[+-]?[0-9]"));
    return start.match(QString::fromLatin1(zone)).hasMatch();
}

Calendar Calendar::withoutCache() const {
    Calendar result(zone_);
    result.rule_ = rule_;
    return result;
}

QString Calendar::zoneName(Date date) const {
    const auto second = secondSinceEpoch(date);
    if (!second) return {};
    const qint64 asked = equivalentSecond(*second);
    if (rule_.isEmpty())
        return zone_.abbreviation(QDateTime::fromSecsSinceEpoch(asked, QTimeZone::utc()));
    std::tm buffer;
    const std::tm* local = localTime(asked, buffer);
    return local ? QString::fromLocal8Bit(local->tm_zone) : QString();
}

bool Calendar::isSameDay(Date a, Date b) const {
    if (isSameInstant(a, b)) return true;
    // These, and what is no number, differ in any zone.
    if (!(std::abs(a.secondsSinceReferenceDate - b.secondsSinceReferenceDate) <=
          seconds(days(2)).count()))
        return false;
    const auto localA = localSecond(a);
    const auto localB = localSecond(b);
    return localA && localB && floor<days>(seconds(*localA)) == floor<days>(seconds(*localB));
}

bool Calendar::isSameMinute(Date a, Date b) const {
    if (isSameInstant(a, b)) return true;
    // A clock that is set back shows the same minute twice; they are an hour apart in real time.
    if (!(std::abs(a.secondsSinceReferenceDate - b.secondsSinceReferenceDate) <
          seconds(minutes(1)).count()))
        return false;
    const auto localA = localSecond(a);
    const auto localB = localSecond(b);
    return localA && localB && floor<minutes>(seconds(*localA)) == floor<minutes>(seconds(*localB));
}

std::optional<qint64> Calendar::localSecond(Date date) const {
    const auto second = secondSinceEpoch(date);
    if (!second) return std::nullopt;
    return *second + offsetAt(equivalentSecond(*second));
}

int Calendar::offsetAt(qint64 second) const {
    if (rule_.isEmpty()) return stretchAt(second).offset;
    std::tm buffer;
    const std::tm* local = localTime(second, buffer);
    return local ? static_cast<int>(local->tm_gmtoff) : 0;
}

const Calendar::Stretch& Calendar::stretchAt(qint64 second) const {
    const auto holds = [second](const Stretch& s) { return s.begin <= second && second < s.end; };
    if (last_ < stretches_.size() && holds(stretches_[last_])) return stretches_[last_];
    auto at = std::upper_bound(stretches_.begin(), stretches_.end(), second,
                               [](qint64 value, const Stretch& s) { return value < s.end; });
    if (at == stretches_.end() || !holds(*at)) at = stretches_.insert(at, askZone(second));
    last_ = static_cast<std::size_t>(at - stretches_.begin());
    return *at;
}

Calendar::Stretch Calendar::askZone(qint64 second) const {
    const QDateTime instant = QDateTime::fromSecsSinceEpoch(second, QTimeZone::utc());
    Stretch result{std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(),
                   zone_.offsetFromUtc(instant)};
    if (!zone_.hasTransitions()) return result;
    // "Previous" is strictly before; a transition at this very second already counts.
    const auto previous = zone_.previousTransition(instant.addSecs(1));
    const auto next = zone_.nextTransition(instant);
    if (previous.atUtc.isValid()) result.begin = previous.atUtc.toSecsSinceEpoch();
    if (next.atUtc.isValid()) result.end = next.atUtc.toSecsSinceEpoch();
    // Should a zone's tables contradict themselves, the result holds for this second alone.
    if (second < result.begin || second >= result.end) return {second, second + 1, result.offset};
    return result;
}

}  // namespace foundation
