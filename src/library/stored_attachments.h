#pragma once
// SPDX-License-Identifier: MIT
//
// Gives back what pictures and files of a log occupy: they are read from the log's file again when
// they are needed.

#include <memory>

#include "foundation/stored_data.h"
#include "transcript/chat_log.h"

namespace vell {

/// The log with its attachments left in the file, of which it was read as `bytes`. What isn't there
/// as it is, as in text forms of archives, stays in memory.
[[nodiscard]] TesselChatLog withStoredAttachments(
    TesselChatLog log, const foundation::Data& bytes,
    const std::shared_ptr<const foundation::FileState>& file);

}  // namespace vell
