// SPDX-License-Identifier: MIT
#include "export/chat_log_visitor.h"

#include <variant>
#include <vector>

namespace vell {
namespace {

using Event = TesselChatLog::Event;

enum class EventRole { session, newDay, newMinute, senderChange, systemMessage, content };

struct RoleOf {
    bool isSystemMessage;

    EventRole operator()(const TesselChatLog::Session&) const { return EventRole::session; }
    EventRole operator()(const TesselChatLog::NewDay&) const { return EventRole::newDay; }
    EventRole operator()(const TesselChatLog::NewMinute&) const { return EventRole::newMinute; }
    EventRole operator()(const TesselChatLog::User&) const { return EventRole::senderChange; }
    // Also pictures, files and links without a sender: no heading names one.
    EventRole operator()(const TesselChatLog::PlainText&) const { return content(); }
    EventRole operator()(const TesselChatLog::Image&) const { return content(); }
    EventRole operator()(const TesselChatLog::File&) const { return content(); }
    EventRole operator()(const TesselChatLog::Link&) const { return content(); }

  private:
    [[nodiscard]] EventRole content() const {
        return isSystemMessage ? EventRole::systemMessage : EventRole::content;
    }
};

EventRole roleOf(const Event& event) {
    return std::visit(RoleOf{event.isSystemMessage()}, event.value);
}

/// The event at `first` and what follows of the same message.
Message messageAt(const TesselChatLog& log, std::size_t first) {
    std::size_t end = first + 1;
    while (log.continuesMessage(end))
        ++end;
    return Message(log.events()).subspan(first, end - first);
}

/// Finds the content after an event. Asked in ascending order, it passes over the events once.
class NextContent {
  public:
    explicit NextContent(const std::vector<Event>& events) : events_(events) {}
    /// Null when a system message, another session or the end comes first.
    [[nodiscard]] const Event* after(std::size_t index) {
        if (next_ <= index) next_ = index + 1;
        for (; next_ < events_.size(); ++next_) {
            const EventRole role = roleOf(events_[next_]);
            if (role == EventRole::content) return &events_[next_];
            if (role == EventRole::systemMessage || role == EventRole::session) break;
        }
        return nullptr;
    }

  private:
    const std::vector<Event>& events_;
    std::size_t next_ = 0;
};

}  // namespace

qint64 visit(const TesselChatLog& log, ChatLogVisitor& visitor) {
    qint64 messages = 0;
    const auto& events = log.events();
    NextContent nextContent(events);
    for (std::size_t i = 0; i < events.size();) {
        const Event& event = events[i];
        const Message message = messageAt(log, i);
        switch (roleOf(event)) {
            case EventRole::session:
                visitor.session(std::get<TesselChatLog::Session>(event.value));
                break;
            case EventRole::newDay:
                visitor.newDay(event);
                break;
            case EventRole::newMinute:
                visitor.newMinute(event);
                break;
            case EventRole::senderChange:
                visitor.senderChange(nextContent.after(i));
                break;
            case EventRole::systemMessage:
                visitor.systemMessage(message);
                ++messages;
                break;
            case EventRole::content:
                visitor.message(message);
                ++messages;
                break;
        }
        i += message.size();
    }
    return messages;
}

}  // namespace vell
