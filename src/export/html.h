#pragma once
// SPDX-License-Identifier: MIT
//
// A chat log as HTML for a clipboard: a paragraph a message, a heading a day. Texts stand as they
// are, only links that a click may lead to can be followed, and nothing is loaded.

#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// What the output throws passes through.
void writeHtml(const TesselChatLog& log, const ContactsStore& contacts, const ByteSink& output);

}  // namespace vell
