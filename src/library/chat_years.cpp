// SPDX-License-Identifier: MIT
#include "library/chat_years.h"

#include <chrono>
#include <utility>
#include <variant>
#include <vector>

namespace vell {
namespace {

using Event = TesselChatLog::Event;

struct Year {
    std::vector<Event> events;
    std::vector<bool> continuations;
    std::ptrdiff_t session = -1;  // whose heading it has last, by its index in the log

    void append(const Event& event, foundation::Date date) {
        events.push_back(event);
        events.back().sequence = std::ssize(events);
        events.back().timestamp = date;
    }
};

int yearOf(foundation::Date date, const foundation::Calendar& calendar) {
    using namespace std::chrono;
    const auto second = calendar.localSecond(date);
    if (!second) return 0;
    return int(year_month_day(floor<days>(sys_seconds(seconds(*second)))).year());
}

}  // namespace

std::map<int, TesselChatLog> chatYears(const TesselChatLog& log,
                                       const foundation::Calendar& calendar) {
    std::map<int, Year> years;
    std::ptrdiff_t session = -1;
    for (std::size_t i = 0; i < log.events().size(); ++i) {
        const Event& event = log.events()[i];
        if (std::holds_alternative<TesselChatLog::Session>(event.value)) {
            session = static_cast<std::ptrdiff_t>(i);
            continue;
        }
        Year& year = years[yearOf(event.timestamp, calendar)];
        // The end of a run stands before what ended it, perhaps in another year.
        const bool endsRun = std::holds_alternative<TesselChatLog::User>(event.value);
        if (endsRun && year.events.empty()) continue;
        if (!endsRun && std::exchange(year.session, session) != session)
            year.append(log.events()[static_cast<std::size_t>(session)], event.timestamp);
        if (log.continuesMessage(i)) {
            year.continuations.resize(year.events.size(), false);
            year.continuations.push_back(true);
        }
        year.append(event, event.timestamp);
    }
    std::map<int, TesselChatLog> result;
    for (auto& [number, year] : years) {
        if (!year.events.empty())
            result.insert(
                {number, log.withEvents(std::move(year.events), std::move(year.continuations))});
    }
    return result;
}

}  // namespace vell
