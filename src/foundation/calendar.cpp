// SPDX-License-Identifier: MIT
#include "foundation/calendar.h"

#include <QDateTime>
#include <QFileInfo>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
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
QByteArray zoneName(QByteArray zone) {
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

/// The offset of "UTC+2", "UTC-5:30" and the like. In TZ such a text is a rule that counts
/// westwards; Qt takes it for a name, counted eastwards.
std::optional<int> offsetOfUtcRule(const QByteArray& zone) {
    int sign = 0;
    int parts[3] = {};
    if (std::sscanf(zone.constData(), "UTC%n%3d:%2d:%2d", &sign, &parts[0], &parts[1], &parts[2]) <
        1)
        return std::nullopt;
    const int size = parts[1] * 60 + parts[2];
    return -(parts[0] * 3600 + (zone.at(sign) == '-' ? -size : size));
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
    const QByteArray name = zoneName(zone);
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
    if (const QTimeZone fixed(offsetOfUtcRule(name).value_or(std::numeric_limits<int>::max()));
        fixed.isValid())
        return Calendar(fixed);
    if (auto calendar = named(name)) return *std::move(calendar);
    [[maybe_unused]] static const int reported =
        std::fprintf(stderr, "Unknown time zone in TZ, taking UTC: %s\n", name.constData());
    return Calendar(QTimeZone::utc());
}

bool Calendar::isSameDay(Date a, Date b) const {
    if (isSameInstant(a, b)) return true;
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
    const auto second = date.secondSinceEpoch();
    if (!second) return std::nullopt;
    return *second + stretchAt(*second).offset;
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
