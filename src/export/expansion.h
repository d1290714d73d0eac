#pragma once
// SPDX-License-Identifier: MIT
//
// What an export may come to. Messages share texts, and people and addresses theirs, so that a
// small file can make a document thousands of times its size: that is told before anything is
// written.

#include <functional>

#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// The bytes that an export of a transcript of this size may take without being asked for again.
[[nodiscard]] quint64 exportLimit(qsizetype transcriptSize);

/// Whether `write` writes more than `limit` bytes, or has to read more than that of what is
/// attached if it reads that. Most often a look at the sizes of the log's texts is enough; else it
/// is tried, up to the limit, without keeping anything.
[[nodiscard]] bool expandsBeyond(quint64 limit, const TesselChatLog& log,
                                 const ContactsStore& contacts, bool readsAttachments,
                                 const std::function<void(const ByteSink&)>& write);

}  // namespace vell
