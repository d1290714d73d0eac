// SPDX-License-Identifier: MIT
#include "foundation/calendar.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QTimeZone>
#include <cmath>
#include <limits>

namespace foundation {
namespace {

Date at(const char* iso8601) {
    const QDateTime time = QDateTime::fromString(QString::fromLatin1(iso8601), Qt::ISODateWithMs);
    return Date::fromMillisecondsSinceEpoch(time.toMSecsSinceEpoch());
}

/// Restores TZ.
class ZoneOfProcess {
  public:
    ~ZoneOfProcess() { wasSet_ ? qputenv("TZ", before_) : qunsetenv("TZ"); }

  private:
    const QByteArray before_ = qgetenv("TZ");
    const bool wasSet_ = qEnvironmentVariableIsSet("TZ");
};

int offsetAt(const Calendar& calendar, qint64 second) {
    const auto local = calendar.localSecond(Date::fromMillisecondsSinceEpoch(second * 1000));
    return static_cast<int>(local.value_or(0) - second);
}

TEST(Calendar, DaysAndMinutes) {
    struct Row {
        const char* name;
        const char* zone;
        const char* a;
        const char* b;
        bool sameDay;
        bool sameMinute;
    };
    const Row rows[] = {
        {"within a minute", "UTC", "2009-07-04T13:04:05Z", "2009-07-04T13:04:59.9Z", true, true},
        {"less than a minute apart, other minute", "UTC", "2009-07-04T13:04:59Z",
         "2009-07-04T13:05:00Z", true, false},
        {"midnight in the zone, not in UTC", "Europe/Berlin", "2009-07-04T21:59:00Z",
         "2009-07-04T22:00:00Z", false, false},
        {"midnight in UTC, not in the zone", "Europe/Berlin", "2009-07-04T23:59:59Z",
         "2009-07-05T00:00:00Z", true, false},
        {"a summer evening beside winter's offset", "Europe/Berlin", "2009-01-04T22:30:00Z",
         "2009-01-04T22:59:00Z", true, false},
        {"the repeated hour of autumn", "Europe/Berlin", "2009-10-25T00:30:10Z",
         "2009-10-25T01:30:40Z", true, false},
        {"the hour left out in spring", "Europe/Berlin", "2009-03-29T00:59:59Z",
         "2009-03-29T01:00:00Z", true, false},
        {"set back across midnight: the day before goes on", "America/Sao_Paulo",
         "2018-02-18T01:59:30Z", "2018-02-18T02:00:30Z", true, false},
        {"it ends an hour later", "America/Sao_Paulo", "2018-02-18T02:59:59Z",
         "2018-02-18T03:00:00Z", false, false},
        {"the day that was left out", "Pacific/Apia", "2011-12-30T09:59:59Z",
         "2011-12-30T10:00:00Z", false, false},
        {"a local minute that isn't UTC's", "Africa/Monrovia", "1970-01-01T00:00:29Z",
         "1970-01-01T00:00:30Z", true, false},
        {"a rule instead of a name", "EST5EDT,M3.2.0,M11.1.0", "2009-07-04T03:59:59Z",
         "2009-07-04T04:00:00Z", false, false},
        {"a rule whose standard time is called UTC", "UTC-1CEST,M3.5.0,M10.5.0/3",
         "2009-07-04T21:59:59Z", "2009-07-04T22:00:00Z", false, false},
    };
    const ZoneOfProcess restored;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        qputenv("TZ", row.zone);
        const Calendar calendar = Calendar::current();
        EXPECT_EQ(calendar.isSameDay(at(row.a), at(row.b)), row.sameDay);
        EXPECT_EQ(calendar.isSameDay(at(row.b), at(row.a)), row.sameDay);
        EXPECT_EQ(calendar.isSameMinute(at(row.a), at(row.b)), row.sameMinute);
        EXPECT_EQ(calendar.isSameMinute(at(row.b), at(row.a)), row.sameMinute);
    }
}

TEST(Calendar, InstantsOutOfRangeEqualOnlyThemselves) {
    const Calendar calendar = *Calendar::named("America/New_York");
    const double values[] = {std::nan(""), std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(), 1e300, 0.0};
    for (const double a : values) {
        for (const double b : values) {
            const bool same = a == b || (std::isnan(a) && std::isnan(b));
            EXPECT_EQ(calendar.isSameDay({a}, {b}), same) << a << ' ' << b;
            EXPECT_EQ(calendar.isSameMinute({a}, {b}), same) << a << ' ' << b;
        }
    }
}

TEST(Calendar, CachedStretchesAgreeWithTheZone) {
    const Calendar calendar = *Calendar::named("Europe/London");
    const QTimeZone zone("Europe/London");
    const auto localDay = [&zone](qint64 second) {
        return QDateTime::fromSecsSinceEpoch(second, zone).date();
    };
    constexpr qint64 spring = 1238288400;  // 2009-03-29T01:00:00Z, asked before what precedes it
    EXPECT_EQ(offsetAt(calendar, spring), 3600);
    EXPECT_EQ(offsetAt(calendar, spring - 1), 0);
    // Back and forth through two centuries, so that stretches are met out of order.
    quint32 random = 1;
    for (int i = 0; i < 3000; ++i) {
        random = random * 1664525 + 1013904223;
        const qint64 a = static_cast<qint64>(random) * 2 - 4000000000;
        const qint64 b = a + static_cast<qint64>(random % 90000);
        ASSERT_EQ(calendar.isSameDay(Date::fromMillisecondsSinceEpoch(a * 1000),
                                     Date::fromMillisecondsSinceEpoch(b * 1000)),
                  localDay(a) == localDay(b))
            << a << ' ' << b;
    }
}

TEST(Calendar, ZoneNamesAsTheCLibraryReadsThem) {
    struct Row {
        const char* tz;
        int offsetInJuly;
    };
    const Row rows[] = {
        {"Europe/Berlin", 7200},
        {":Europe/Berlin", 7200},
        {"/usr/share/zoneinfo/Europe/Berlin", 7200},
        {":/usr/share/zoneinfo/Asia/Kolkata", 19800},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 7200},
        {":UTC-1CEST,M3.5.0,M10.5.0/3", 7200},
        {"<+03>-3", 10800},
        {"UTC+2", -7200},
        {"UTC+02:00", -7200},
        {"", 0},
        {"No/Such_Zone", 0},
    };
    constexpr qint64 july2009 = 1246708800;
    constexpr qint64 year = 31556952;
    const ZoneOfProcess restored;
    for (const Row& row : rows) {
        qputenv("TZ", row.tz);
        const Calendar calendar = Calendar::current();
        EXPECT_EQ(offsetAt(calendar, july2009), row.offsetInJuly) << row.tz;
        EXPECT_TRUE(calendar.hasZoneOf(calendar.withoutCache()));
        // Far from any table the rules go on.
        for (const int years : {400, 8000, 120000})
            EXPECT_EQ(offsetAt(calendar, july2009 + years * year), row.offsetInJuly) << row.tz;
        EXPECT_LT(offsetAt(calendar, july2009 - 3000 * year), 86400) << row.tz;
        constexpr qint64 cycle = qint64(146097) * 86400;
        for (qint64 second = 4102444800; second < 4102444800 + year; second += 86400)
            ASSERT_EQ(offsetAt(calendar, second), offsetAt(calendar, second + 20 * cycle))
                << second;
    }
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(Calendar::current().zoneName(at("2009-07-04T13:04:05Z")), QStringLiteral("CEST"));
    EXPECT_FALSE(Calendar::current().hasZoneOf(*Calendar::named("UTC")));
    EXPECT_FALSE(Calendar::named("No/Such_Zone"));
    EXPECT_FALSE(Calendar::named("CET-1CEST"));
}

}  // namespace
}  // namespace foundation
