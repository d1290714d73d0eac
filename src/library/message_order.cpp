// SPDX-License-Identifier: MIT
#include "library/message_order.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <variant>

namespace vell {
namespace {

using Event = TesselChatLog::Event;

bool isDated(foundation::Date date) {
    return std::isfinite(date.secondsSinceReferenceDate) && !date.isDistantPast();
}

/// Cheap, and equal for equal contents.
struct ContentHash {
    std::size_t operator()(const TesselChatLog::PlainText& value) const {
        return qHash(value.text);
    }
    std::size_t operator()(const TesselChatLog::Link& value) const { return qHash(value.title); }
    std::size_t operator()(const TesselChatLog::Image& value) const { return qHash(value.data()); }
    template <class Other>
    std::size_t operator()(const Other&) const {
        return 0;
    }
};

}  // namespace

/// Which messages of a session were in earlier ones. Of a message that one file has twice, two are
/// shown, however many other files have it.
class MessageOrder::Repetitions {
  public:
    explicit Repetitions(const MessageOrder& order)
        : order_(order), shown_(0, Hash{order}, Same{order}) {
        for (const Session& session : order.read_) {
            if (session.messages.empty()) continue;
            firsts_.push_back(session.first);
            lasts_.push_back(session.last);
        }
        std::sort(firsts_.begin(), firsts_.end());
        std::sort(lasts_.begin(), lasts_.end());
    }

    /// How many sessions reach into a stretch of time.
    [[nodiscard]] std::ptrdiff_t sessionsBetween(double from, double to) const {
        const auto begun = std::upper_bound(firsts_.begin(), firsts_.end(), to) - firsts_.begin();
        const auto over = std::lower_bound(lasts_.begin(), lasts_.end(), from) - lasts_.begin();
        return begun - over;
    }

    struct Place {
        std::uint32_t session;
        std::uint32_t message;
    };
    /// What is shown for the message, itself if it is new. Sessions come one after the other.
    Place shownFor(Place place) {
        Entry& entry = shown_[place];
        if (entry.session != place.session) {
            entry.session = place.session;
            entry.count = 0;
        }
        if (entry.count == entry.places.size()) entry.places.push_back(place);
        return entry.places[entry.count++];
    }

  private:
    struct Entry {
        std::vector<Place> places;
        std::uint32_t session = std::numeric_limits<std::uint32_t>::max();
        std::size_t count = 0;  ///< in that session, so far
    };
    struct Hash {
        const MessageOrder& order;
        std::size_t operator()(const Place& place) const {
            const Message& message = order.read_[place.session].messages[place.message];
            const Event& event = order.sessions_[place.session].log->events()[message.span.first];
            return qHashMulti(0, message.date, event.sender,
                              std::visit(ContentHash(), event.value));
        }
    };
    struct Same {
        const MessageOrder& order;
        bool operator()(const Place& a, const Place& b) const {
            const Message& one = order.read_[a.session].messages[a.message];
            const Message& other = order.read_[b.session].messages[b.message];
            if (one.date != other.date || one.span.count != other.span.count) return false;
            const Event* events = &order.sessions_[a.session].log->events()[one.span.first];
            return std::equal(events, events + one.span.count,
                              &order.sessions_[b.session].log->events()[other.span.first],
                              [](const Event& x, const Event& y) {
                                  return x.sender == y.sender && x.value == y.value;
                              });
        }
    };

    const MessageOrder& order_;
    std::vector<double> firsts_;
    std::vector<double> lasts_;
    std::unordered_map<Place, Entry, Hash, Same> shown_;
};

MessageOrder::MessageOrder(const std::vector<SessionLog>& sessions) : sessions_(sessions) {
    for (const SessionLog& session : sessions)
        read_.push_back(read(*session.log));
    ranked_.resize(sessions.size());
    std::iota(ranked_.begin(), ranked_.end(), std::size_t{0});
    std::stable_sort(ranked_.begin(), ranked_.end(), [this](std::size_t a, std::size_t b) {
        const auto begin = [this](std::size_t index) {
            const auto& messages = read_[index].messages;
            return messages.empty() ? 0 : messages.front().ordered;
        };
        return begin(a) < begin(b);
    });

    Repetitions repetitions(*this);
    for (std::uint32_t rank = 0; rank < ranked_.size(); ++rank) {
        const auto index = static_cast<std::uint32_t>(ranked_[rank]);
        const Session& session = read_[index];
        const bool isAlone = repetitions.sessionsBetween(session.first, session.last) < 2;
        for (std::uint32_t i = 0; i < session.messages.size(); ++i) {
            const Message& message = session.messages[i];
            if (!isAlone && repetitions.sessionsBetween(message.date, message.date) > 1) {
                const auto shown = repetitions.shownFor({index, i});
                if (shown.session != index || shown.message != i) {
                    const MessageSpan span = read_[shown.session].messages[shown.message].span;
                    for (std::uint32_t event = 0; event < span.count; ++event) {
                        repeats_.push_back(
                            {{sessions_[index].file, message.span.first + event + 1},
                             {sessions_[shown.session].file, span.first + event + 1}});
                    }
                    continue;
                }
            }
            messages_.push_back({message.date, message.ordered, rank, message.span});
        }
    }
    std::sort(repeats_.begin(), repeats_.end());
    order();
}

// Those without a date get that of the one before, or else of the one
/// after.
MessageOrder::Session MessageOrder::read(const TesselChatLog& log) {
    Session session;
    const auto& events = log.events();
    std::size_t undated = 0;
    for (std::size_t i = 0; i < events.size();) {
        if (!events[i].isMessage()) {
            ++i;
            continue;
        }
        std::size_t end = i + 1;
        while (log.continuesMessage(end))
            ++end;
        const foundation::Date date = events[i].timestamp;
        double seconds = session.messages.empty()
                             ? foundation::Date::distantPast.secondsSinceReferenceDate
                             : session.messages.back().date;
        if (isDated(date)) {
            seconds = date.secondsSinceReferenceDate;
            for (; undated > 0; --undated)
                session.messages[undated - 1].date = seconds;
        } else if (undated == session.messages.size()) {
            ++undated;
        }
        session.messages.push_back(
            {{static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(end - i)},
             seconds,
             seconds});
        i = end;
    }
    keepFileOrder(session);
    return session;
}

// A clock may have been wrong for a while, in either direction. A message that is out of order gets
// the latest date before it or the earliest after it, whichever changes fewer messages.
void MessageOrder::keepFileOrder(Session& session) {
    auto& messages = session.messages;
    if (messages.empty()) return;
    std::vector<double> latest;
    std::vector<double> earliest;
    latest.reserve(messages.size());
    earliest.reserve(messages.size());
    for (const Message& message : messages)
        latest.push_back(latest.empty() ? message.date : std::max(latest.back(), message.date));
    for (auto message = messages.rbegin(); message != messages.rend(); ++message)
        earliest.push_back(earliest.empty() ? message->date
                                            : std::min(earliest.back(), message->date));
    std::reverse(earliest.begin(), earliest.end());
    session.first = earliest.front();
    session.last = latest.back();
    const auto moved = [&](const std::vector<double>& dates) {
        std::ptrdiff_t count = 0;
        for (std::size_t i = 0; i < messages.size(); ++i)
            count += dates[i] != messages[i].date ? 1 : 0;
        return count;
    };
    const auto& dates = moved(latest) <= moved(earliest) ? latest : earliest;
    for (std::size_t i = 0; i < messages.size(); ++i)
        messages[i].ordered = dates[i];
}

// Sessions that meet no other one are in order already. Later ones may begin before what is left of
// a session whose beginning is a repetition.
void MessageOrder::order() {
    const auto beginOf = [this](std::uint32_t rank) {
        return read_[ranked_[rank]].messages.front().ordered;
    };
    const auto isEarlier = [](const OrderedMessage& a, const OrderedMessage& b) {
        return a.ordered < b.ordered;
    };
    auto begin = messages_.begin();
    double latest = -std::numeric_limits<double>::infinity();
    for (auto at = begin; at != messages_.end(); ++at) {
        if (at != begin && at->rank != std::prev(at)->rank && beginOf(at->rank) >= latest) {
            if (begin->rank != std::prev(at)->rank) std::stable_sort(begin, at, isEarlier);
            begin = at;
        }
        latest = std::max(latest, at->ordered);
    }
    std::stable_sort(begin, messages_.end(), isEarlier);
}

}  // namespace vell
