#pragma once
// SPDX-License-Identifier: MIT
//
// ChatExport: a chat that is written into a file of any format: into a temporary one beside it that
// takes its name once it is complete.

#include <QString>
#include <memory>

#include "app/documents/export/background_job.h"
#include "app/documents/export/export_formats.h"
#include "paper/page_range.h"
#include "paper/paper_context.h"
#include "transcript/chat_log.h"

namespace vell {

/// Values that any thread may have.
struct ChatExport {
    std::shared_ptr<const TesselChatLog> log;
    PaperSetup paper;  ///< also who people are
    ExportChoice choice;
    QString target;        ///< path
    PageRange pages = {};  ///< of a PDF
};

/// Writes it. Nothing is left behind of one that is cancelled or fails.
[[nodiscard]] JobResult writeChat(const ChatExport& order, const JobControl& control);

}  // namespace vell
