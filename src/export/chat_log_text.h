#pragma once
// SPDX-License-Identifier: MIT
//
// The text of TesselChatLog::generatePlainText, written instead of returned.

#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// What the output throws passes through.
void writeMarkdown(const TesselChatLog& log, const ContactsStore& contacts, const ByteSink& output);

}  // namespace vell
