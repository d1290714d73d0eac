#pragma once
// SPDX-License-Identifier: MIT
//
// ChatContents: where in a chat its days begin, and what was shared in it. A thread of its own
// reads the events once. Window thread only.
//
//     auto contents = std::make_unique<ChatContents>(log, calendar);
//     connect(contents.get(), &ChatContents::ready, …);

#include <QDate>
#include <QObject>
#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/calendar.h"
#include "toolkit/callback_guard.h"
#include "transcript/chat_log.h"

namespace vell {

/// A local day of a chat, and the row at which it begins first.
struct ChatDay {
    QDate date;
    qsizetype row = 0;
    qsizetype messages = 0;  ///< system lines don't count
};

/// The date of an instant on the calendar's clock; none for what no calendar can express, nor for
/// messages without a date.
[[nodiscard]] std::optional<QDate> localDate(foundation::Date date,
                                             const foundation::Calendar& calendar);

enum class SharedKind { picture, link, file };
inline constexpr std::array sharedKinds{SharedKind::picture, SharedKind::link, SharedKind::file};

class ChatContents final : public QObject {
    Q_OBJECT

  public:
    /// Begins to read. The calendar is the one that the log's days were marked with.
    ChatContents(std::shared_ptr<const TesselChatLog> log, const foundation::Calendar& calendar,
                 QObject* parent = nullptr);
    ~ChatContents() override;

    [[nodiscard]] bool isReady() const { return isReady_; }
    /// In order of time, each once. Those that no calendar can express are left out.
    [[nodiscard]] const std::vector<ChatDay>& days() const { return found_.days; }
    /// The rows of this kind, in the chat's order.
    [[nodiscard]] const std::vector<qsizetype>& rows(SharedKind kind) const {
        return found_.rows[static_cast<size_t>(kind)];
    }

  Q_SIGNALS:
    void ready();

  private:
    struct Found {
        std::vector<ChatDay> days;
        std::array<std::vector<qsizetype>, sharedKinds.size()> rows;
    };
    struct Run {
        explicit Run(QObject* owner) : callbacks(owner) {}
        std::atomic<bool> isCancelled = false;
        CallbackGuard callbacks;
    };

    static Found read(const TesselChatLog& log, const foundation::Calendar& calendar,
                      const std::atomic<bool>& isCancelled);

    std::shared_ptr<Run> run_;
    Found found_;
    bool isReady_ = false;
};

}  // namespace vell
