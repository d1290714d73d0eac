#pragma once
// SPDX-License-Identifier: MIT
//
// A chat's pages on a printer, or on any other device that paints pages.

#include <QPagedPaintDevice>

#include "paper/page_range.h"
#include "paper/paper_context.h"
#include "transcript/chat_log.h"

namespace vell {

/// Paints pages on a device whose pages have no margins of their own; their size is the setup's.
/// Returns how many there were, or -1 where the device failed.
[[nodiscard]] int printPages(const TesselChatLog& chatlog, const PaperSetup& setup,
                             QPagedPaintDevice& device, const PageRange& range,
                             const PaperProgress& progress);

}  // namespace vell
