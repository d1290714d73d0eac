#pragma once
// SPDX-License-Identifier: MIT
//
// How a text sees the flat list of events: which of them is a heading, which is told by nobody, and
// which stand together as one message. Every format for people walks over them in the same way:
//
//     walk(log, renderer);

#include <QString>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "transcript/chat_log.h"

namespace vell {

enum class EventRole { newDay, newMinute, senderChange, systemMessage, content };

[[nodiscard]] EventRole eventRole(const TesselChatLog::Event& event);

/// The event at `first` and what follows of the same message.
[[nodiscard]] std::span<const TesselChatLog::Event> messageAt(const TesselChatLog& log,
                                                              std::size_t first);

/// The texts that stand side by side from `index` on, as one; `index` moves to the last of them.
/// Null when there is no text. What text means may depend on what comes next to it.
[[nodiscard]] std::optional<QString> textAt(std::span<const TesselChatLog::Event> message,
                                            std::size_t& index);

/// Text without a character: nothing was written.
[[nodiscard]] bool isEmptyText(const TesselChatLog::Event& event);
/// A message of nothing else.
[[nodiscard]] bool isEmpty(std::span<const TesselChatLog::Event> message);
/// Text that starts on a new line by itself.
[[nodiscard]] bool beginsWithLineBreak(const TesselChatLog::Event& event);

/// Answers which sender's content follows an event; asked in rising order, all answers together
/// cost one walk over the events.
class NextSender {
  public:
    explicit NextSender(const std::vector<TesselChatLog::Event>& events) : events_(events) {}
    /// The next content's event after `index`; null when a system message or the end comes first.
    [[nodiscard]] const TesselChatLog::Event* after(std::size_t index);

  private:
    const std::vector<TesselChatLog::Event>& events_;
    std::size_t next_ = 0;
};

/// Hands the log to a renderer part by part, in order.
template <class Renderer>
void walk(const TesselChatLog& log, Renderer& renderer) {
    const auto& events = log.events();
    NextSender nextSender(events);
    for (std::size_t i = 0; i < events.size();) {
        const TesselChatLog::Event& event = events[i];
        const auto message = messageAt(log, i);
        switch (eventRole(event)) {
            case EventRole::newDay:
                renderer.newDay(event);
                break;
            case EventRole::newMinute:
                renderer.newMinute(event);
                break;
            case EventRole::senderChange:
                renderer.senderChange(nextSender.after(i));
                break;
            case EventRole::systemMessage:
                renderer.systemMessage(message);
                break;
            case EventRole::content:
                renderer.message(message);
                break;
        }
        i += message.size();
    }
}

/// "File: NAME (1234 bytes)", "Folder: NAME (2 entries)", "Symbolic link: NAME"; not escaped.
[[nodiscard]] QString fileLine(const foundation::FileWrapper& wrapper);
/// Where the picture came from: its path, else a file name that says what it is.
[[nodiscard]] QString picturePath(const TesselChatLog::Image& image);
/// The last component of such a path.
[[nodiscard]] QString pictureName(const QString& path);
/// Whether a link has words of its own besides the address.
[[nodiscard]] bool hasOwnTitle(const QString& title, const QString& address);

}  // namespace vell
