#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryStatistics: how much was written in a library, when and by whom. Files with the same bytes
// count once.

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "foundation/calendar.h"
#include "library/library_people.h"

namespace vell {

struct LibraryStatistics {
    struct Writer {
        int person = -1;  ///< as LibraryPeople::personOf has it
        qint64 messages = 0;
    };
    struct Span {
        foundation::Date begin;
        foundation::Date end;
    };

    qint64 messages = 0;
    std::map<int, qint64> years;  ///< those between the first and the last are all there
    std::array<qint64, 24> hours{};
    std::vector<Writer> writers;  ///< the busiest first
    std::optional<Span> span;     ///< from the first dated message to the last
    std::optional<Span> silence;  ///< the longest one between two messages

    /// Of the conversations with one partner, or all when it is -1. Messages of nobody count in
    /// neither of these figures. Throws DatabaseError.
    [[nodiscard]] static LibraryStatistics read(LibraryStore& store, const LibraryPeople& people,
                                                int partner, const foundation::Calendar& calendar);
};

}  // namespace vell
