// SPDX-License-Identifier: MIT
#include "library/search_hit.h"

#include <cmath>
#include <limits>
#include <tuple>

#include "library/query.h"

namespace vell {
namespace {

/// No number is older than every date.
double sortable(foundation::Date date) {
    const double seconds = date.secondsSinceReferenceDate;
    return std::isnan(seconds) ? -std::numeric_limits<double>::infinity() : seconds;
}

}  // namespace

bool isNewer(const SearchHit& a, const SearchHit& b) {
    const double first = sortable(a.message.date);
    const double second = sortable(b.message.date);
    return std::tie(second, a.path, b.message.sequence) <
           std::tie(first, b.path, a.message.sequence);
}

bool isNamed(const TesselUserID& person, const QString& typed, const SearchScope& scope) {
    return containsFolded(person.userID, typed) ||
           (scope.nameOf && containsFolded(scope.nameOf(person), typed));
}

}  // namespace vell
