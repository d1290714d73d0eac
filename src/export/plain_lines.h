#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as people quote one in a mail: "Jonas, 20:05: No. Why?", and a line for each new day.

#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// What the output throws passes through.
void writePlainLines(const TesselChatLog& log, const ContactsStore& contacts,
                     const ByteSink& output);

}  // namespace vell
