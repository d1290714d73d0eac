// SPDX-License-Identifier: MIT
#include "foundation/date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace foundation {
namespace {

TEST(Date, TextOfAnyDouble) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    struct Row {
        const char* name;
        double seconds;
        const char* iso8601;  // null: not expressible
        const char* description;
    };
    const Row rows[] = {
        {"quarter second", 268405445.25, "2009-07-04T13:04:05.250Z", "2009-07-04 13:04:05 +0000"},
        {"just before a second is rounded down", -0.0001, "2000-12-31T23:59:59.999Z",
         "2000-12-31 23:59:59 +0000"},
        {"a millisecond that no double holds exactly", 268405445.999, "2009-07-04T13:04:05.999Z",
         "2009-07-04 13:04:05 +0000"},
        {"the double before a millisecond", std::nextafter(268405445.022, 0.0),
         "2009-07-04T13:04:05.021Z", "2009-07-04 13:04:05 +0000"},
        {"leap day of a century", -26524800.0, "2000-02-29T00:00:00.000Z",
         "2000-02-29 00:00:00 +0000"},
        {"1900 is no leap year", -3182198400.0, "1900-03-01T00:00:00.000Z",
         "1900-03-01 00:00:00 +0000"},
        {"distant past", Date::distantPast.secondsSinceReferenceDate, "0001-01-01T00:00:00.000Z",
         "0001-01-01 00:00:00 +0000"},
        {"distant past of the Julian calendar", -63114076800.0, nullptr,
         "0001-01-01 00:00:00 +0000"},
        {"before year 1", Date::distantPast.secondsSinceReferenceDate - 1, nullptr, "-63113904001"},
        {"last second", 252423993599.0, "9999-12-31T23:59:59.000Z", "9999-12-31 23:59:59 +0000"},
        {"year 10000", 252423993600.0, nullptr, "252423993600"},
        {"year 300,000", 9.4e12, nullptr, "9.4e+12"},
        {"largest double", std::numeric_limits<double>::max(), nullptr, "1.7976931348623157e+308"},
        {"infinite", infinity, nullptr, "inf"},
        {"not a number", std::nan(""), nullptr, "nan"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Date date{row.seconds};
        EXPECT_EQ(date.iso8601().value_or(QString()).toStdString(), row.iso8601 ? row.iso8601 : "");
        EXPECT_EQ(date.description().toStdString(), row.description);
    }
}

TEST(Date, WholeMillisecondsSurviveTheWayThroughSeconds) {
    for (const qint64 start : {-62135596800000LL, -1LL, 1246712645000LL, 253402300799000LL}) {
        for (qint64 ms = start; ms < start + 1000; ++ms)
            ASSERT_EQ(Date::fromMillisecondsSinceEpoch(ms).millisecondsSinceEpoch(), ms);
    }
}

}  // namespace
}  // namespace foundation
