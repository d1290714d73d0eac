#pragma once
// SPDX-License-Identifier: MIT
//
// Calendar: whether two instants share a day or a minute in a time zone, with the offset valid at
// each instant. It caches the stretches of constant offset that it has met, so the zone's rules are
// queried once for each; one calendar serves one thread at a time (copies are cheap).

#include <QByteArray>
#include <QTimeZone>
#include <optional>
#include <vector>

#include "foundation/date.h"

namespace foundation {

class Calendar {
  public:
    explicit Calendar(const QTimeZone& zone);

    /// In the zone named by TZ as the C library would read it, else the system's. TZ may also be a
    /// rule; such a calendar is right only as long as TZ stays. An unknown name means
    /// UTC, as it does there, and is reported on standard error.
    static Calendar current();
    /// In the zone of this name, "Europe/Berlin"; a leading ":" and the path of the zone database
    /// are ignored. Nothing when it is unknown.
    static std::optional<Calendar> named(const QByteArray& zone);
    /// Whether this has the form of a rule, "CET-1CEST,M3.5.0,M10.5.0/3" or "UTC+2". Only the C
    /// library understands rules, and only the one in TZ.
    static bool isRule(const QByteArray& zone);

    /// The same zone in a calendar with nothing cached, for another thread.
    [[nodiscard]] Calendar withoutCache() const;
    /// The zone; meaningless where a rule is followed.
    [[nodiscard]] const QTimeZone& timeZone() const { return zone_; }
    [[nodiscard]] bool hasZoneOf(const Calendar& other) const {
        return zone_ == other.zone_ && rule_ == other.rule_;
    }
    /// The short name of the zone at that instant: "CEST".
    [[nodiscard]] QString zoneName(Date date) const;
    /// The same local day. Instants that no calendar can express share a day only with themselves.
    [[nodiscard]] bool isSameDay(Date a, Date b) const;
    /// The same local minute; the second 02:30 of an autumn night is another minute than the first.
    [[nodiscard]] bool isSameMinute(Date a, Date b) const;
    /// Seconds since 1970 as a local clock counts them, rounded down; nothing for what is no number
    /// or millions of years away.
    [[nodiscard]] std::optional<qint64> localSecond(Date date) const;

  private:
    /// [begin, end) in seconds since 1970 within which the zone keeps one offset.
    struct Stretch {
        qint64 begin;
        qint64 end;
        int offset;
    };

    QTimeZone zone_;
    QByteArray rule_;  // what TZ held when it was a rule; the zone then means nothing
    mutable std::vector<Stretch> stretches_;  // in order of time, never overlapping
    mutable std::size_t last_ = 0;            // where the last instant lay

    [[nodiscard]] int offsetAt(qint64 second) const;
    [[nodiscard]] const Stretch& stretchAt(qint64 second) const;
    [[nodiscard]] Stretch askZone(qint64 second) const;
};

}  // namespace foundation
