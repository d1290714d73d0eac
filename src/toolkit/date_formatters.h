#pragma once
// SPDX-License-Identifier: MIT
//
// Dates for people, in their locale and time zone: the shared formatters that separators on screen
// and headings in exported text are made with, one for days alone and a full one for tooltips.
// Making one takes milliseconds, so there is one of each for the process, and a clone for every
// further thread that asks.
//
//     timeSeparatorFormatter().string(event.timestamp)

#include <QByteArray>
#include <QString>
#include <memory>
#include <vector>

#include "foundation/calendar.h"
#include "foundation/date.h"

namespace vell {

/// One style of date in one locale and time zone. A formatter serves one thread; copying it is how
/// another one gets its own, and is safe at any time.
class DateFormatter {
  public:
    enum class Style { mediumDateShortTime, shortTime, fullDate, fullDateTime };

    /// Locales as in LANG or as language tags: "de_DE.UTF-8", "de-DE"; "C" and "POSIX" are English.
    DateFormatter(Style style, const QByteArray& locale, foundation::Calendar calendar);
    DateFormatter(const DateFormatter& other);
    DateFormatter& operator=(const DateFormatter&) = delete;
    ~DateFormatter();

    /// The local date or time at that instant, with the era before the year 1; what no calendar
    /// expresses is the number of seconds.
    [[nodiscard]] QString string(foundation::Date date) const;

  private:
    struct Format;

    Style style_;
    std::shared_ptr<const Format> prototype_;  // never formats, so that any thread may clone it
    std::unique_ptr<Format> format_;
    mutable std::unique_ptr<Format> formatWithEra_;  // made on demand
    foundation::Calendar calendar_;
    mutable std::vector<QString> shortTimes_;  // by local minute of the day, made on demand

    [[nodiscard]] QString formatted(qint64 localSecond) const;
};

/// Medium date and short time. The reference is this thread's own and lives as long as the thread.
[[nodiscard]] const DateFormatter& daySeparatorFormatter();
/// Short time alone; otherwise like daySeparatorFormatter().
[[nodiscard]] const DateFormatter& timeSeparatorFormatter();
/// Weekday and date; otherwise like daySeparatorFormatter().
[[nodiscard]] const DateFormatter& dayFormatter();
/// Weekday, date, time with seconds, and the zone; otherwise like daySeparatorFormatter().
[[nodiscard]] const DateFormatter& fullDateFormatter();

/// Replaces the user's locale and time zone in the shared formatters; what they are asked for from
/// now on follows, on each thread from its next call above.
void setSharedDateFormat(const QByteArray& locale, const foundation::Calendar& calendar);

/// The calendar of the shared formatters' time zone, for the caller's thread.
[[nodiscard]] foundation::Calendar sharedCalendar();

/// Whether ICU has data for the locale; for unknown ones it silently falls back to another.
[[nodiscard]] bool isKnownLocale(const QByteArray& locale);
/// Whether this is the name of a time zone or a rule with its offset; a bare abbreviation such as
/// "CEST" is neither, though the C library takes it for UTC under another name.
[[nodiscard]] bool isKnownTimeZone(const QByteArray& zone);

/// The locale for dates that the environment asks for: LC_ALL, else LC_TIME, else LANG.
[[nodiscard]] QByteArray environmentDateLocale();

}  // namespace vell
