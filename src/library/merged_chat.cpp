// SPDX-License-Identifier: MIT
#include "library/merged_chat.h"

#include <algorithm>
#include <variant>

#include "library/message_order.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

/// Writes the events of a merged log, with their marks, headings and ends of runs.
class LogBuilder {
  public:
    LogBuilder(const foundation::Calendar& calendar, std::size_t size) : calendar_(calendar) {
        events_.reserve(size);
        origins_.reserve(size);
    }

    /// Returns the row of the heading.
    qsizetype beginSession(const SessionLog& session, foundation::Date date) {
        endRun(previous_);
        append(date, {}, TesselChatLog::Session{session.path}, {session.file, 0});
        return std::ssize(events_) - 1;
    }

    void addMessage(const SessionLog& session, const OrderedMessage& message) {
        const Event* events = &session.log->events()[message.span.first];
        const foundation::Date date{message.date};
        if (sender_ && !(sender_ == events->sender)) endRun(date);
        sender_ = events->sender;
        if (!calendar_.isSameDay(date, previous_)) {
            append(date, {}, TesselChatLog::NewDay(), {session.file, 0});
        } else if (!calendar_.isSameMinute(date, previous_)) {
            append(date, {}, TesselChatLog::NewMinute(), {session.file, 0});
        }
        previous_ = date;
        for (std::size_t i = 0; i < message.span.count; ++i) {
            if (i > 0) {
                continuations_.resize(events_.size(), false);
                continuations_.push_back(true);
            }
            append(date, events[i].sender, events[i].value,
                   {session.file, static_cast<std::uint32_t>(events[i].sequence)});
        }
    }

    std::vector<Event> events_;
    std::vector<bool> continuations_;
    std::vector<EventOrigin> origins_;

  private:
    const foundation::Calendar& calendar_;
    foundation::Date previous_ = foundation::Date::distantPast;
    SharedUserID sender_;

    void endRun(foundation::Date date) {
        if (sender_) append(date, sender_, TesselChatLog::User(), {origins_.back().file, 0});
        sender_ = {};
    }
    void append(foundation::Date date, const SharedUserID& sender, Event::Value value,
                EventOrigin origin) {
        events_.push_back(
            {static_cast<qint64>(events_.size()) + 1, date, sender, std::move(value)});
        origins_.push_back(origin);
    }
};

/// Who wrote, in all files: the owner is whoever more files take for theirs than for another.
class People {
  public:
    void add(const TesselChatLog& log) {
        serviceID_ = log.serviceID();
        if (log.ownUserID().userID == QLatin1String("?")) {
            unknown_ = log.ownUserID();
        } else {
            ++votes_[log.ownUserID()];
        }
        for (const TesselUserID& other : log.otherUserIDs())
            --votes_[other];
    }

    [[nodiscard]] TesselChatLog log(std::vector<Event> events,
                                    std::vector<bool> continuations) const {
        QSet<TesselUserID> others;
        QSet<TesselUserID> own;
        for (const auto& [user, votes] : votes_.asKeyValueRange())
            (votes > 0 ? own : others).insert(user);
        TesselUserID owner = unknown_;
        if (!own.isEmpty()) {
            const std::vector<TesselUserID> inOrder = sorted(own);
            owner = *std::max_element(
                inOrder.begin(), inOrder.end(),
                [this](const auto& a, const auto& b) { return votes_[a] < votes_[b]; });
            own.remove(owner);
        }
        return {serviceID_,        std::move(owner),         std::move(others),
                std::move(events), std::move(continuations), std::move(own)};
    }

  private:
    TesselServiceID serviceID_;
    TesselUserID unknown_{{}, QStringLiteral("?")};
    QHash<TesselUserID, int> votes_;
};

}  // namespace

MergedChat::MergedChat(Log log, std::vector<EventOrigin> origins,
                       std::vector<MergedSession> sessions, Repeats repeats)
    : log_(std::move(log)),
      origins_(std::move(origins)),
      sessions_(std::move(sessions)),
      repeats_(std::move(repeats)) {}

EventOrigin MergedChat::originAt(qsizetype row) const {
    auto origin = origins_.begin() + std::clamp<qsizetype>(row, 0, std::ssize(origins_));
    while (origin != origins_.end() && origin->sequence == 0)
        ++origin;
    return origin == origins_.end() ? EventOrigin() : *origin;
}

std::optional<qsizetype> MergedChat::rowOf(EventOrigin origin) const {
    const auto repeat = std::lower_bound(
        repeats_.begin(), repeats_.end(), origin,
        [](const auto& entry, const EventOrigin& wanted) { return entry.first < wanted; });
    if (repeat != repeats_.end() && repeat->first == origin) origin = repeat->second;
    const auto session =
        std::find_if(sessions_.begin(), sessions_.end(),
                     [&](const MergedSession& each) { return each.file == origin.file; });
    if (session == sessions_.end()) return std::nullopt;
    // Other sessions may be mixed with this one, but nothing of it is above its heading.
    const auto found = std::find_if(origins_.begin() + std::max<qsizetype>(session->row, 0),
                                    origins_.end(), [&](const EventOrigin& each) {
                                        return each.file == origin.file &&
                                               each.sequence >= origin.sequence &&
                                               each.sequence > 0;
                                    });
    if (found == origins_.end()) return std::nullopt;
    return found - origins_.begin();
}

std::optional<qsizetype> MergedChat::sessionBeside(qsizetype row, int direction) const {
    std::optional<qsizetype> nearest;
    for (const MergedSession& session : sessions_) {
        const bool isBeside = direction < 0 ? session.row < row : session.row > row;
        if (session.row < 0 || !isBeside) continue;
        if (!nearest || (direction < 0 ? session.row > *nearest : session.row < *nearest))
            nearest = session.row;
    }
    return nearest;
}

MergedChat mergeChats(const std::vector<SessionLog>& sessions,
                      const foundation::Calendar& calendar) {
    const MessageOrder order(sessions);
    People people;
    std::vector<MergedSession> merged;
    std::size_t size = 0;
    for (const std::size_t index : order.sessions()) {
        const SessionLog& session = sessions[index];
        people.add(*session.log);
        size += session.log->events().size() + 2;
        const auto [first, last] = order.dates(index);
        merged.push_back({session.file, session.path, -1, {first}, {last}});
    }

    LogBuilder builder(calendar, size);
    for (const OrderedMessage& message : order.messages()) {
        const SessionLog& session = sessions[order.sessions()[message.rank]];
        MergedSession& entry = merged[message.rank];
        if (entry.row < 0)
            entry.row =
                builder.beginSession(session, session.log->events()[message.span.first].timestamp);
        builder.addMessage(session, message);
    }
    auto log = std::make_shared<const TesselChatLog>(
        people.log(std::move(builder.events_), std::move(builder.continuations_)));
    return {std::move(log), std::move(builder.origins_), std::move(merged), order.repeats()};
}

}  // namespace vell
