#pragma once
// SPDX-License-Identifier: MIT
//
// ChatLogVisitor: how every format for people goes over the flat list of events. It sees headings
// and whole messages, in order.
//
//     visit(log, renderer);

#include "export/message.h"
#include "transcript/chat_log.h"

namespace vell {

class ChatLogVisitor {
  public:
    using Event = TesselChatLog::Event;

    virtual void session(const TesselChatLog::Session& session) = 0;
    virtual void newDay(const Event& event) = 0;
    virtual void newMinute(const Event& event) = 0;
    /// A sender's run has ended. `next` is where the next one begins; null when a system message or
    /// the end of the log comes first.
    virtual void senderChange(const Event* next) = 0;
    virtual void systemMessage(Message message) = 0;
    virtual void message(Message message) = 0;

  protected:
    ~ChatLogVisitor() = default;
};

/// Returns the number of messages that were visited, system messages among them.
qint64 visit(const TesselChatLog& log, ChatLogVisitor& visitor);

}  // namespace vell
