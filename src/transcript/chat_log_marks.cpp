// SPDX-License-Identifier: MIT
//
// Days and minutes of a chat log, marked as another calendar has them.
#include <utility>
#include <variant>

#include "transcript/chat_log.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

bool isMark(const Event& event) {
    return std::holds_alternative<TesselChatLog::NewDay>(event.value) ||
           std::holds_alternative<TesselChatLog::NewMinute>(event.value);
}

bool endsRun(const Event& event) {
    return std::holds_alternative<TesselChatLog::User>(event.value);
}

}  // namespace

// Every event has the date of its message, and a message without events has left a mark where it
// began a minute; so the dates that events have are all that marks depend on.
TesselChatLog TesselChatLog::markedIn(const foundation::Calendar& calendar) const {
    std::vector<Event> events;
    std::vector<bool> continuations;
    events.reserve(events_.size() + events_.size() / 16);
    const auto append = [&events](const foundation::Date& date, SharedUserID sender,
                                  Event::Value value) {
        events.push_back(
            {static_cast<qint64>(events.size()) + 1, date, std::move(sender), std::move(value)});
    };
    // A log that begins without a mark has no date, or only that of now.
    foundation::Date previous = foundation::Date::distantPast;
    if (!events_.empty() && !isMark(events_.front())) previous = events_.front().timestamp;
    for (std::size_t index = 0; index < events_.size(); ++index) {
        const Event& event = events_[index];
        const foundation::Date date = event.timestamp;
        // What a new session begins with stands below its heading.
        if (std::holds_alternative<Session>(event.value)) {
            append(date, std::nullopt, event.value);
            continue;
        }
        // The end of a run stands before the mark of the message that has ended it.
        if (endsRun(event)) append(date, event.sender, event.value);
        if (!calendar.isSameDay(date, previous)) {
            append(date, std::nullopt, NewDay());
        } else if (!calendar.isSameMinute(date, previous)) {
            append(date, std::nullopt, NewMinute());
        }
        previous = date;
        if (isMark(event) || endsRun(event)) continue;
        if (continuesMessage(index)) {
            continuations.resize(events.size(), false);
            continuations.push_back(true);
        }
        append(date, event.sender, event.value);
    }
    TesselChatLog result = withEvents(std::move(events), std::move(continuations));
    result.setArchivedMessages(archivedMessages_);
    return result;
}

}  // namespace vell
