#pragma once
// SPDX-License-Identifier: MIT
//
// File > Print …: from the preview to the printer.

#include <QString>
#include <functional>
#include <memory>

#include "app/documents/export/background_job.h"
#include "paper/paper_context.h"
#include "transcript/chat_log.h"

namespace vell {

/// Shows the pages over the window, prints those that are chosen, and calls back with the outcome.
/// The setup's paper is replaced by the printer's.
void printChat(QWidget& window, std::shared_ptr<const TesselChatLog> chatlog, PaperSetup setup,
               std::function<void(const JobResult&)> done);

}  // namespace vell
