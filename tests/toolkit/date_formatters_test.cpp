// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDateTime>
#include <cmath>
#include <limits>
#include <thread>

#include "toolkit/date_formatters.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

using foundation::Calendar;
using foundation::Date;
using Style = DateFormatter::Style;

Date at(const char* iso) {
    return Date::fromMillisecondsSinceEpoch(
        QDateTime::fromString(QString::fromLatin1(iso), Qt::ISODate).toMSecsSinceEpoch());
}

Calendar zone(const char* name) {
    if (auto calendar = Calendar::named(name)) return *calendar;
    qputenv("TZ", name);
    return Calendar::current();
}

TEST(DateFormatter, FollowsLocaleZoneAndTheOffsetOfTheInstant) {
    const struct {
        const char* what;
        const char* locale;
        const char* zone;
        const char* instant;
        const char* day;
        const char* time;
    } rows[] = {
        {"winter", "de_DE.UTF-8", "Europe/Berlin", "2006-01-02T21:04:59Z", "02.01.2006, 22:04",
         "22:04"},
        {"summer", "de_DE@euro", "Europe/Berlin", "2006-07-02T21:04:05Z", "02.07.2006, 23:04",
         "23:04"},
        {"a language tag", "en-GB", "Europe/London", "2006-01-02T21:04:05Z", "2 Jan 2006, 21:04",
         "21:04"},
        {"half an hour of offset", "en_GB", "Asia/Kolkata", "2006-01-02T21:04:05Z",
         "3 Jan 2006, 02:34", "02:34"},
        {"before 1970, an offset with seconds", "de_DE", "Europe/Amsterdam", "1935-01-01T00:00:00Z",
         "01.01.1935, 00:19", "00:19"},
        {"a zone that is only a rule", "de_DE", "XST-3XDT,M3.5.0,M10.5.0", "2006-07-02T21:04:05Z",
         "03.07.2006, 01:04", "01:04"},
        {"before the Gregorian reform", "de_DE", "UTC", "0001-01-01T00:00:00Z", "01.01.1, 00:00",
         "00:00"},
        {"another script", "sr_RS@latin", "UTC", "2006-01-02T21:04:05Z", "2. 1. 2006. 21:04",
         "21:04"},
    };
    const QByteArray before = qgetenv("TZ");
    const bool wasSet = qEnvironmentVariableIsSet("TZ");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const DateFormatter day(Style::mediumDateShortTime, row.locale, zone(row.zone));
        const DateFormatter time(Style::shortTime, row.locale, zone(row.zone));
        EXPECT_EQ(day.string(at(row.instant)), QString::fromUtf8(row.day));
        EXPECT_EQ(time.string(at(row.instant)), QString::fromUtf8(row.time));
    }
    wasSet ? qputenv("TZ", before) : qunsetenv("TZ");
}

TEST(DateFormatter, TheLocalesWithoutALanguageAreEnglish) {
    for (const char* locale : {"", "C", "POSIX", "C.UTF-8"}) {
        const DateFormatter day(Style::mediumDateShortTime, locale, zone("UTC"));
        EXPECT_TRUE(day.string(at("2006-01-02T21:04:05Z")).startsWith(u"Jan 2, 2006")) << locale;
    }
}

TEST(DateFormatter, EveryMinuteOfTheDayHasItsOwnTimeOnBothSidesOfAClockChange) {
    const DateFormatter time(Style::shortTime, "de_DE", zone("Europe/Berlin"));
    const Date night = at("2006-10-28T22:00:00Z");  // 00:00 in summer time; 25 hours to midnight
    QDateTime local(QDate(2006, 10, 29), QTime(0, 0), QTimeZone("Europe/Berlin"));
    for (int minute = 0; minute < 25 * 60; minute++) {
        const Date date{night.secondsSinceReferenceDate + minute * 60 + 59};
        ASSERT_EQ(time.string(date), local.addSecs(minute * 60).toString(u"HH:mm")) << minute;
    }
}

TEST(DateFormatter, FullDatesShowSecondsAndTheZoneOfTheirSeason) {
    const DateFormatter full(Style::fullDateTime, "de_DE", zone("Europe/Berlin"));
    const QString winter = full.string(at("2006-01-02T21:04:59Z"));
    EXPECT_TRUE(winter.startsWith(u"Montag, 2. Januar 2006")) << winter.toStdString();
    EXPECT_TRUE(winter.endsWith(u"22:04:59 MEZ") || winter.endsWith(u"22:04:59 CET"))
        << winter.toStdString();
    EXPECT_TRUE(full.string(at("2006-07-02T21:04:05Z")).contains(u"23:04:05"));
    EXPECT_EQ(full.string({1e300}), Date{1e300}.description());
}

TEST(DateFormatter, YearsBeforeTheFirstAndBeyond9999AreReadable) {
    const DateFormatter day(Style::mediumDateShortTime, "de_DE", zone("Asia/Tokyo"));
    const DateFormatter full(Style::fullDateTime, "de_DE", zone("UTC"));
    EXPECT_EQ(day.string({252423993600.0}), u"01.01.10000, 09:00");
    EXPECT_EQ(day.string({3e11}), u"17.08.11507, 14:20");
    EXPECT_TRUE(day.string({9.4e12}).contains(u".299875, "));
    EXPECT_EQ(day.string({-63114076800.0 - 86400 * 366}), u"30.12.2 v. Chr., 09:18");
    EXPECT_TRUE(full.string({-63114076800.0}).contains(u" v. Chr."));
}

TEST(DateFormatter, DatesOutsideTheCalendarAreNumbers) {
    const double rows[] = {std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(), -1e300, 2e14};
    const DateFormatter day(Style::mediumDateShortTime, "de_DE", zone("Asia/Tokyo"));
    const DateFormatter time(Style::shortTime, "de_DE", zone("Asia/Tokyo"));
    for (const double seconds : rows) {
        EXPECT_EQ(day.string({seconds}), Date{seconds}.description());
        EXPECT_EQ(time.string({seconds}), Date{seconds}.description());
    }
}

TEST(SharedFormatters, ThreadsUseThemAtOnce) {
    EXPECT_EQ(&daySeparatorFormatter(), &daySeparatorFormatter());
    const Date start = at("2006-01-02T21:04:05Z");
    const QString day = daySeparatorFormatter().string(start);
    const QString time = timeSeparatorFormatter().string(start);
    EXPECT_TRUE(day.endsWith(time));
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&] {
            for (int n = 0; n < 300; n++) {
                wrong += timeSeparatorFormatter()
                             .string({start.secondsSinceReferenceDate + n * 61})
                             .isEmpty();
                wrong += daySeparatorFormatter().string(start) != day;
                wrong += timeSeparatorFormatter().string(start) != time;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(SharedFormatters, FollowAnotherFormat) {
    const Date instant = at("2006-01-02T21:04:05Z");
    const DateFormatter& time = timeSeparatorFormatter();
    setSharedDateFormat("de_DE", zone("Asia/Kolkata"));
    EXPECT_EQ(&timeSeparatorFormatter(), &time);
    EXPECT_EQ(time.string(instant), u"02:34");
    EXPECT_EQ(daySeparatorFormatter().string(instant), u"03.01.2006, 02:34");
    setSharedDateFormat(environmentDateLocale(), Calendar::current());
    EXPECT_NE(daySeparatorFormatter().string(instant), u"03.01.2006, 02:34");
}

TEST(DateLocale, IsTakenFromTheMostSpecificVariable) {
    const QByteArray all = qgetenv("LC_ALL");
    const QByteArray lang = qgetenv("LANG");
    qputenv("LC_ALL", "");
    qputenv("LC_TIME", "de_DE.UTF-8");
    qputenv("LANG", "en_GB.UTF-8");
    EXPECT_EQ(environmentDateLocale(), "de_DE.UTF-8");
    qunsetenv("LC_TIME");
    EXPECT_EQ(environmentDateLocale(), "en_GB.UTF-8");
    qputenv("LC_ALL", "ja_JP");
    EXPECT_EQ(environmentDateLocale(), "ja_JP");
    qputenv("LC_ALL", all);
    lang.isNull() ? qunsetenv("LANG") : qputenv("LANG", lang);
}

}  // namespace
}  // namespace vell
