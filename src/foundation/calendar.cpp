// SPDX-License-Identifier: MIT
#include "foundation/calendar.h"

#include <QDateTime>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <utility>

namespace foundation {
namespace {

constexpr qint64 kDay = 86400;
constexpr qint64 kMinute = 60;

qint64 floorDivide(qint64 value, qint64 divisor) {
    const qint64 quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

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

/// What the C library, which reads TZ, has at that second; null when it can't tell.
const std::tm* localTime(qint64 second, std::tm& buffer) {
    const auto time = static_cast<std::time_t>(second);
    return localtime_r(&time, &buffer);
}

/// A second at which every zone has the same offset and the same name. The calendar repeats itself
/// after 400 years, so what is far away is asked for in the first of these that only rules govern:
/// who walks the rules year by year needs no time worth mentioning.
qint64 equivalentSecond(qint64 second) {
    constexpr qint64 kCycle = 146097 * kDay;
    constexpr qint64 kFirstYear = -62135596800;   // 0001-01-01 from 1970
    constexpr qint64 kFirstOfCycle = 4102444800;  // 2100-01-01
    if (second < kFirstYear) return kFirstYear;
    return second < kFirstOfCycle ? second : kFirstOfCycle + (second - kFirstOfCycle) % kCycle;
}

std::optional<qint64> secondSinceEpoch(Date date) {
    constexpr qint64 kReference = 978307200;  // 2001-01-01 from 1970
    constexpr double kLimit = 1.8e14;         // what ICU's dates can express
    const double seconds = std::floor(date.secondsSinceReferenceDate);
    if (!(std::abs(seconds) < kLimit)) return std::nullopt;
    return static_cast<qint64>(seconds) + kReference;
}

/// NaN is the same instant as itself here: a message that inherits it opens nothing new.
bool isSameInstant(Date a, Date b) {
    return std::bit_cast<quint64>(a.secondsSinceReferenceDate) ==
               std::bit_cast<quint64>(b.secondsSinceReferenceDate) ||
           a == b;
}

}  // namespace

Calendar::Calendar(QTimeZone zone) : zone_(std::move(zone)) {}

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

Calendar Calendar::forgetful() const {
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
    // No zone is needed to tell these, or what is no number, apart.
    if (!(std::abs(a.secondsSinceReferenceDate - b.secondsSinceReferenceDate) <= 2 * kDay))
        return false;
    const auto localA = localSecond(a);
    const auto localB = localSecond(b);
    return localA && localB && floorDivide(*localA, kDay) == floorDivide(*localB, kDay);
}

bool Calendar::isSameMinute(Date a, Date b) const {
    if (isSameInstant(a, b)) return true;
    // A clock that is set back shows the same minute twice; real time tells the two apart.
    if (!(std::abs(a.secondsSinceReferenceDate - b.secondsSinceReferenceDate) < kMinute))
        return false;
    const auto localA = localSecond(a);
    const auto localB = localSecond(b);
    return localA && localB && floorDivide(*localA, kMinute) == floorDivide(*localB, kMinute);
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
    // Should a zone's tables contradict themselves, the answer holds for this second alone.
    if (second < result.begin || second >= result.end) return {second, second + 1, result.offset};
    return result;
}

}  // namespace foundation
