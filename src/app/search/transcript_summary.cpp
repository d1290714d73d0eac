// SPDX-License-Identifier: MIT
#include "app/search/transcript_summary.h"

#include <variant>

#include "foundation/print.h"

namespace vell {
namespace {

bool isContent(const TesselChatLog::Event& event) {
    return !event.isSystemMessage() && event.isMessage();
}

/// Messages of people; one with links and pictures is several events.
qint64 messageCount(const TesselChatLog& log) {
    qint64 count = 0;
    for (size_t i = 0; i < log.events().size(); ++i)
        count += isContent(log.events()[i]) && !log.continuesMessage(i) ? 1 : 0;
    return count;
}

}  // namespace

std::optional<TranscriptSummary> TranscriptSummary::read(FileReader& reader, const QString& path) {
    const foundation::SilentThread silent;
    const auto file = reader.read(path);
    if (!file->isRegularFile() || !file->contents) return std::nullopt;
    const auto log = TesselChatLog::fromData(*file->contents->load(), file->modificationDate,
                                             foundation::Calendar::current());
    return TranscriptSummary{sorted(log.otherUserIDs()), chatDays(log), messageCount(log)};
}

}  // namespace vell
