#pragma once
// SPDX-License-Identifier: MIT
//
// Date: an instant as archives hold it, and its text in UTC. Any double is allowed, NaN and
// infinities included; what the calendar can't express prints as the bare number.

#include <QHashFunctions>
#include <QString>
#include <optional>

namespace foundation {

struct Date {
    /// Seconds since 2001-01-01 00:00:00 UTC; may be NaN or infinite when read from a file.
    double secondsSinceReferenceDate = 0;

    /// 0001-01-01 00:00:00 UTC, earlier than any message.
    static const Date distantPast;

    /// Also the same date of the Julian calendar, which is what some writers store for it.
    [[nodiscard]] bool isDistantPast() const;

    /// The current time.
    static Date now();
    /// From milliseconds since 1970, the platform's file times.
    static Date fromMillisecondsSinceEpoch(qint64 milliseconds);

    /// Milliseconds since 1970, rounded down; nothing when outside the years 1-9999.
    [[nodiscard]] std::optional<qint64> millisecondsSinceEpoch() const;
    /// "2009-07-04T13:04:05.250Z" (milliseconds rounded down); nothing outside the years 1-9999.
    [[nodiscard]] std::optional<QString> iso8601() const;
    /// "2009-07-04 13:04:05 +0000", or the number of seconds outside the years 1-9999.
    [[nodiscard]] QString description() const;

    friend bool operator==(const Date&, const Date&) = default;
    friend size_t qHash(const Date& date, size_t seed = 0) {
        return ::qHash(date.secondsSinceReferenceDate, seed);
    }
};

}  // namespace foundation
