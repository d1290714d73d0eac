#pragma once
// SPDX-License-Identifier: MIT
//
// MergedChat: the messages of many files as one chat log, in order of time, each session below a
// heading. What several files repeat is in it once: the same content from the same sender at the
// same instant, as often as it is in the file that has it most often.
//
//     const MergedChat chat = mergeChats({{0, path, log}, …}, calendar);

#include <QByteArray>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/calendar.h"
#include "transcript/chat_log.h"

namespace vell {

/// A file that was read, under a number that stays the same while others are added.
struct SessionLog {
    std::uint32_t file = 0;
    QByteArray path;
    std::shared_ptr<const TesselChatLog> log;  ///< never null
};

/// An event of a file.
struct EventOrigin {
    std::uint32_t file = 0;
    std::uint32_t sequence = 0;  ///< 0 for marks and headings
    friend auto operator<=>(const EventOrigin&, const EventOrigin&) = default;
};

struct MergedSession {
    std::uint32_t file = 0;
    QByteArray path;
    /// Of its heading; -1 for a file whose messages are all shown as those of others.
    qsizetype row = -1;
    foundation::Date first;
    foundation::Date last;
};

class MergedChat {
  public:
    using Log = std::shared_ptr<const TesselChatLog>;
    /// Each message that isn't shown, and the one that is shown for it; in order.
    using Repeats = std::vector<std::pair<EventOrigin, EventOrigin>>;

    MergedChat(Log log, std::vector<EventOrigin> origins, std::vector<MergedSession> sessions,
               Repeats repeats);

    [[nodiscard]] const Log& log() const { return log_; }
    /// In the order of their beginnings.
    [[nodiscard]] const std::vector<MergedSession>& sessions() const { return sessions_; }
    /// How many messages are shown by others.
    [[nodiscard]] qsizetype repeatCount() const { return std::ssize(repeats_); }

    /// Where a row's event comes from; of a mark or heading what comes below it.
    [[nodiscard]] EventOrigin originAt(qsizetype row) const;
    /// The row of an event, or of what is shown for it; nothing for files that aren't in the chat.
    [[nodiscard]] std::optional<qsizetype> rowOf(EventOrigin origin) const;
    /// The heading nearest above the row (-1) or below it (1).
    [[nodiscard]] std::optional<qsizetype> sessionBeside(qsizetype row, int direction) const;

  private:
    Log log_;
    std::vector<EventOrigin> origins_;  // of each row
    std::vector<MergedSession> sessions_;
    Repeats repeats_;
};

/// The files' numbers are different from each other. Files keep their own order of messages;
/// among those of equal times an earlier session comes first.
[[nodiscard]] MergedChat mergeChats(const std::vector<SessionLog>& sessions,
                                    const foundation::Calendar& calendar);

}  // namespace vell
