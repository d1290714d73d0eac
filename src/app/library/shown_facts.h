#pragma once
// SPDX-License-Identifier: MIT
//
// Numbers, days and times as the library's lists show them, in the user's locale and time zone.

#include <QDate>
#include <QString>

#include "foundation/date.h"

namespace vell {

/// "1,204 messages".
[[nodiscard]] QString shownMessages(qint64 count);
/// "3 May 2009"; empty for what no calendar expresses.
[[nodiscard]] QString shownDay(foundation::Date date);
[[nodiscard]] QString shownDay(QDate day);
/// "Sun 3, 20:04": what is left below the heading of a month.
[[nodiscard]] QString shownDayOfMonth(foundation::Date date);

}  // namespace vell
