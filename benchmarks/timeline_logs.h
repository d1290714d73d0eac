#pragma once
// SPDX-License-Identifier: MIT
//
// Chat logs for measuring the timeline, made without a file in between. The same arguments give the
// same log.

#include <QtGlobal>
#include <memory>

#include "transcript/chat_log.h"

namespace benchmarks {

using Log = std::shared_ptr<const vell::TesselChatLog>;

/// A conversation of three with messages of all usual lengths, captions and times between them.
[[nodiscard]] Log plainLog(qsizetype events);
/// One message between two short ones.
[[nodiscard]] Log manyLines(int lines);
[[nodiscard]] Log oneLine(int characters);
/// A picture a row, in JPEG, `distinct` of them different, of 4000 by 3000 pixels.
[[nodiscard]] Log pictureLog(qsizetype events, int distinct);

}  // namespace benchmarks
