#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as CSV (RFC 4180, UTF-8): a row for each text, link, picture and file of a message,
// below the header
//
//     file,sequence,timestamp,service,user,name,kind,text,address
//
// A spreadsheet takes a cell that begins with "=", "+", "-" or "@" for a formula. Such a cell gets
// an apostrophe in front, whatever blanks come first, and so does one that begins with an
// apostrophe: without the first apostrophe of each cell that has one, the cells are what the
// transcript holds.

#include "export/attachment_paths.h"
#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

struct CsvOptions {
    QString file;                   ///< what the first column says
    bool hasHeader = true;          ///< the first row
    bool hasByteOrderMark = false;  ///< which some spreadsheets need to find UTF-8
};

/// Returns the number of messages written. What the output throws passes through.
qint64 writeCsv(const TesselChatLog& log, const ContactsStore& contacts, const ByteSink& output,
                const CsvOptions& options, const AttachmentPaths& attachments = {});

}  // namespace vell
