#pragma once
// SPDX-License-Identifier: MIT
//
// Conversation: a transcript as the library keeps it, whole messages instead of events. A message's
// text is what can be searched in it: words, links with their addresses, names of files.

#include <QString>
#include <vector>

#include "transcript/chat_log.h"

namespace vell {

/// What a message holds; any combination.
struct ContentKinds {
    static constexpr quint8 text = 1;
    static constexpr quint8 link = 2;
    static constexpr quint8 picture = 4;
    static constexpr quint8 file = 8;
};

struct LibraryMessage {
    qint64 sequence = 0;    ///< of its first event
    foundation::Date date;  ///< in whole milliseconds
    int sender = -1;        ///< an index into the conversation's people; -1 for system messages
    quint8 kinds = 0;
    QString text;
};

struct Conversation {
    /// All who wrote or took part, each once; the owner of the transcript first.
    std::vector<TesselUserID> people;
    /// In the file's order; messages that hold nothing are left out.
    std::vector<LibraryMessage> messages;
};

/// The conversation in a log that was read from a file of this size. Throws std::length_error when
/// its texts, which messages can share, are out of all proportion to the file.
[[nodiscard]] Conversation conversationOf(const TesselChatLog& log, qsizetype fileSize);

/// What stands for a message without text: "[picture]".
[[nodiscard]] QString placeholderFor(quint8 kinds);

}  // namespace vell
