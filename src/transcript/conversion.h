#pragma once
// SPDX-License-Identifier: MIT
//
// From a decoded timeline to a chat log, for timelines that weren't read by TesselChatLog itself.

#include <optional>

#include "transcript/chat_log.h"
#include "transcript/chat_timeline.h"

namespace vell {

/// The timeline's log must have been measured. `fileDate` dates the events of an empty transcript.
[[nodiscard]] TesselChatLog convertTimeline(iChatTimeline timeline, qsizetype fileSize,
                                            std::optional<foundation::Date> fileDate,
                                            const foundation::Calendar& calendar);

}  // namespace vell
