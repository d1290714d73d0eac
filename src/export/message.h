#pragma once
// SPDX-License-Identifier: MIT
//
// A message as formats for people write it: pieces of text, links, pictures and files, and the
// words that stand for what isn't text.

#include <QString>
#include <cstddef>
#include <optional>
#include <span>
#include <variant>

#include "transcript/chat_log.h"

namespace vell {

/// The events of one message.
using Message = std::span<const TesselChatLog::Event>;

/// Texts that stand side by side are one piece: what they mean may depend on what comes next.
struct Piece {
    using Content = std::variant<QString, const TesselChatLog::Link*, const TesselChatLog::Image*,
                                 const TesselChatLog::File*>;
    Content content;
    bool needsOwnLine = false;  ///< a file, or what comes after one
    qint64 sequence = 0;        ///< of its first event

    /// Whether it is text that starts on a new line by itself.
    [[nodiscard]] bool beginsWithLineBreak() const;
};

/// Divides a message, which outlives it, into its pieces. Empty texts are left out.
class PieceReader {
  public:
    explicit PieceReader(Message message) : message_(message) {}
    /// Nothing at the message's end.
    [[nodiscard]] std::optional<Piece> next();

  private:
    Message message_;
    std::size_t index_ = 0;
    bool followsFile_ = false;

    void appendTextsTo(QString& text);
};

/// Whether the event at the index is the first piece of a message.
[[nodiscard]] bool beginsMessage(const TesselChatLog& log, std::size_t index);
/// The number of messages in the log, without which no document is complete.
[[nodiscard]] qint64 messageCount(const TesselChatLog& log);

/// Whether the message consists of empty texts.
[[nodiscard]] bool isEmpty(Message message);

/// The name of a file in a transcript; "unnamed" without one.
[[nodiscard]] QString fileName(const foundation::FileWrapper& wrapper);
/// "File: NAME (1234 bytes)", "Folder: NAME (2 entries)", "Symbolic link: NAME"; not escaped.
[[nodiscard]] QString fileLine(const foundation::FileWrapper& wrapper);
/// Where the picture came from: its path, else a file name that says what it is.
[[nodiscard]] QString picturePath(const TesselChatLog::Image& image);
/// The last component of such a path.
[[nodiscard]] QString pictureName(const QString& path);
/// The words of a link besides its address; empty when it has none.
[[nodiscard]] QString ownTitle(const TesselChatLog::Link& link);
/// "TITLE (ADDRESS)", or the address alone.
[[nodiscard]] QString linkInText(const TesselChatLog::Link& link);

}  // namespace vell
