#pragma once
// SPDX-License-Identifier: MIT
//
// MessageLinks: which archived object each row of a chat comes from, and back.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "transcript/chat_log.h"

namespace vell {

class MessageLinks {
  public:
    MessageLinks() = default;
    explicit MessageLinks(const TesselChatLog& log);

    /// The object of the message that the row belongs to; nothing for marks and notes.
    [[nodiscard]] std::optional<quint32> objectOf(qsizetype row) const;
    struct Rows {
        qsizetype first;
        qsizetype last;
    };
    /// The rows of that object's message.
    [[nodiscard]] std::optional<Rows> rowsOf(quint64 object) const;

  private:
    struct Message {
        Rows rows;
        std::optional<quint32> object;
    };
    std::vector<Message> messages_;  ///< in the order of rows
    std::vector<std::pair<quint32, Rows>> byObject_;
};

}  // namespace vell
