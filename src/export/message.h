#pragma once
// SPDX-License-Identifier: MIT
//
// How a text sees the flat list of events: which of them is a heading, which is told by nobody, and
// which stand together as one message. Markdown and terminal text agree on it.

#include <QString>
#include <cstddef>
#include <span>
#include <vector>

#include "transcript/chat_log.h"

namespace vell {

enum class EventRole { newDay, newMinute, senderChange, systemMessage, content };

[[nodiscard]] EventRole eventRole(const TesselChatLog::Event& event);

/// The content at `first` and what follows of the same message. Events don't tell where a message
/// ends: runs of one share sender and instant, and two texts side by side are never runs of one.
[[nodiscard]] std::span<const TesselChatLog::Event> messageAt(
    const std::vector<TesselChatLog::Event>& events, std::size_t first);

/// Text without a character: nothing was written.
[[nodiscard]] bool isEmptyText(const TesselChatLog::Event& event);
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

/// "File: NAME (1234 bytes)", "Folder: NAME (2 entries)", "Symbolic link: NAME"; not escaped.
[[nodiscard]] QString fileLine(const foundation::FileWrapper& wrapper);
/// Where the picture came from: its path, else a file name that says what it is.
[[nodiscard]] QString picturePath(const TesselChatLog::Image& image);
/// The last component of such a path.
[[nodiscard]] QString pictureName(const QString& path);
/// Whether a link has words of its own besides the address.
[[nodiscard]] bool hasOwnTitle(const QString& title, const QString& address);

}  // namespace vell
