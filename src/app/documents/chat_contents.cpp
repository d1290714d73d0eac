// SPDX-License-Identifier: MIT
#include "app/documents/chat_contents.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "foundation/guarded.h"

namespace vell {
namespace {

/// Chats whose messages aren't in order come to a day more than once.
void joinEqualDays(std::vector<ChatDay>& days) {
    std::stable_sort(days.begin(), days.end(),
                     [](const ChatDay& a, const ChatDay& b) { return a.date < b.date; });
    std::vector<ChatDay> joined;
    for (const ChatDay& day : days) {
        if (!joined.empty() && joined.back().date == day.date) {
            joined.back().messages += day.messages;
        } else {
            joined.push_back(day);
        }
    }
    days = std::move(joined);
}

}  // namespace

std::optional<QDate> localDate(foundation::Date date, const foundation::Calendar& calendar) {
    constexpr qint64 secondsPerDay = 86400;
    const auto second = date.isDistantPast() ? std::nullopt : calendar.localSecond(date);
    if (!second) return std::nullopt;
    const qint64 day = *second / secondsPerDay - (*second % secondsPerDay < 0 ? 1 : 0);
    const QDate local = QDate(1970, 1, 1).addDays(day);
    return local.isValid() ? std::optional(local) : std::nullopt;
}

ChatContents::ChatContents(std::shared_ptr<const TesselChatLog> log,
                           const foundation::Calendar& calendar, QObject* parent)
    : QObject(parent), run_(std::make_shared<Run>(this)) {
    const auto finish = [this](Found found) {
        found_ = std::move(found);
        isReady_ = true;
        Q_EMIT ready();
    };
    foundation::runDetached(
        [run = run_, log = std::move(log), calendar = calendar.withoutCache(), finish] {
            Found found = read(*log, calendar, run->isCancelled);
            run->callbacks.post(
                [finish, found = std::move(found)]() mutable { finish(std::move(found)); });
        },
        [run = run_, finish] { run->callbacks.post([finish] { finish({}); }); });
}

ChatContents::~ChatContents() {
    run_->isCancelled = true;
    run_->callbacks.close();
}

ChatContents::Found ChatContents::read(const TesselChatLog& log,
                                       const foundation::Calendar& calendar,
                                       const std::atomic<bool>& isCancelled) {
    Found found;
    bool isInDay = false;
    for (size_t index = 0; index < log.events().size() && !isCancelled; ++index) {
        const TesselChatLog::Event& event = log.events()[index];
        const auto row = static_cast<qsizetype>(index);
        const auto share = [&](SharedKind kind) {
            found.rows[static_cast<size_t>(kind)].push_back(row);
        };
        if (std::holds_alternative<TesselChatLog::NewDay>(event.value)) {
            const auto date = localDate(event.timestamp, calendar);
            isInDay = date.has_value();
            if (date) found.days.push_back({*date, row, 0});
            continue;
        }
        if (!event.isMessage()) continue;
        if (isInDay && event.sender && !log.continuesMessage(index)) ++found.days.back().messages;
        if (std::holds_alternative<TesselChatLog::Image>(event.value)) share(SharedKind::picture);
        if (std::holds_alternative<TesselChatLog::Link>(event.value)) share(SharedKind::link);
        if (std::holds_alternative<TesselChatLog::File>(event.value)) share(SharedKind::file);
    }
    joinEqualDays(found.days);
    return found;
}

}  // namespace vell
