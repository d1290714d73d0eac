#pragma once
// SPDX-License-Identifier: MIT
//
// Calendar: whether two instants share a day or a minute in a time zone, with the offset valid at
// each instant. It remembers the bounds of the last local day and offset, so the zone's rules are
// asked only on leaving them; one calendar serves one thread at a time (copies are cheap).

#include <QTimeZone>
#include <optional>

#include "foundation/date.h"

namespace foundation {

class Calendar {
  public:
    explicit Calendar(QTimeZone zone);

    /// In the zone named by TZ as the C library would read it, else the system's.
    static Calendar current();

    [[nodiscard]] const QTimeZone& timeZone() const { return zone_; }
    /// The same local day. Instants outside the calendar share a day only with themselves.
    [[nodiscard]] bool isSameDay(Date a, Date b) const;
    /// The same local minute; the second 02:30 of an autumn night is another minute than the first.
    [[nodiscard]] bool isSameMinute(Date a, Date b) const;

  private:
    QTimeZone zone_;
    // The stretch [begin, end) of seconds since 1970 in which `offset_` holds without a change.
    mutable double begin_ = 0;
    mutable double end_ = 0;
    mutable int offset_ = 0;

    [[nodiscard]] std::optional<qint64> localSecond(Date date) const;
};

}  // namespace foundation
