#pragma once
// SPDX-License-Identifier: MIT
//
// Random chat logs out of what breaks Markdown, with the blocks that a reader has to find.

#include <QString>
#include <random>
#include <vector>

#include "export/commonmark.h"
#include "identity/contacts/contacts_store.h"
#include "transcript/chat_log.h"

namespace vell::test {

struct ExpectedLog {
    TesselChatLog log;
    ContactsStore::Table contacts;
    std::vector<Block> blocks;
};

/// As transcripts are converted: a marker between senders; everything else as nasty as can be.
[[nodiscard]] ExpectedLog nastyLog(std::mt19937& random);
/// Events in any order, markers missing or out of place; the blocks hold no headings. Every text
/// begins with its sender's name and a slash; nobody's with a slash.
[[nodiscard]] ExpectedLog disorderlyLog(std::mt19937& random);

}  // namespace vell::test
