#pragma once
// SPDX-License-Identifier: MIT
//
// MessageOrder: in which order the messages of several files are shown as one chat, and which are
// left out because another file has them too. mergeChats() makes the chat.

#include <cstdint>
#include <utility>
#include <vector>

#include "library/merged_chat.h"

namespace vell {

/// The events of one message in its file's log.
struct MessageSpan {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

struct OrderedMessage {
    double date = 0;         ///< its own, or that of its neighbour where it has none
    double ordered = 0;      ///< never earlier than that of the message before it in its file
    std::uint32_t rank = 0;  ///< of its session, by their beginnings
    MessageSpan span;
};

class MessageOrder {
  public:
    /// Borrows the sessions.
    explicit MessageOrder(const std::vector<SessionLog>& sessions);

    /// Indexes of the sessions, in the order of their beginnings.
    [[nodiscard]] const std::vector<std::size_t>& sessions() const { return ranked_; }
    /// The first and the last date of a session, by its index.
    [[nodiscard]] std::pair<double, double> dates(std::size_t index) const {
        return {read_[index].first, read_[index].last};
    }
    /// What is shown, in order.
    [[nodiscard]] const std::vector<OrderedMessage>& messages() const { return messages_; }
    [[nodiscard]] const MergedChat::Repeats& repeats() const { return repeats_; }

  private:
    struct Message {
        MessageSpan span;
        double date = 0;     ///< its own, or that of its neighbour where it has none
        double ordered = 0;  ///< in the order of the file
    };
    struct Session {
        std::vector<Message> messages;
        double first = 0;
        double last = 0;
    };
    class Repetitions;

    static Session read(const TesselChatLog& log);
    static void keepFileOrder(Session& session);
    void order();

    const std::vector<SessionLog>& sessions_;
    std::vector<Session> read_;
    std::vector<std::size_t> ranked_;
    std::vector<OrderedMessage> messages_;
    MergedChat::Repeats repeats_;
};

}  // namespace vell
