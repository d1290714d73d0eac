#pragma once
// SPDX-License-Identifier: MIT
//
// A chat as a PDF: the timeline on pages, with the days as its outline.

#include <QIODevice>

#include "paper/page_range.h"
#include "paper/paper_context.h"
#include "paper/pdf_file.h"
#include "transcript/chat_log.h"

namespace vell {

struct PdfResult {
    qint64 pages = 0;
    qint64 messages = 0;
    bool isComplete = false;  ///< progress didn't end it
};

/// Writes the document as it goes. Throws PdfFile::WriteFailed.
PdfResult writePdf(const TesselChatLog& chatlog, const PaperSetup& setup, QIODevice& device,
                   const PaperProgress& progress = {}, const PageRange& range = {});

}  // namespace vell
