#pragma once
// SPDX-License-Identifier: MIT
//
// What the search window tells of a transcript beside its file: who took part, when, and how many
// messages there are.

#include <QString>
#include <optional>
#include <vector>

#include "app/documents/chat_title.h"
#include "app/documents/file_reader.h"
#include "transcript/chat_log.h"

namespace vell {

struct TranscriptSummary {
    std::vector<TesselUserID> participants;  ///< sorted
    std::optional<ChatDays> days;
    qint64 messages = 0;

    /// Reads and converts the file at the path; nothing if it isn't a transcript. Prints nothing.
    /// May block like the reader, and throws what it throws.
    static std::optional<TranscriptSummary> read(FileReader& reader, const QString& path);
};

}  // namespace vell
