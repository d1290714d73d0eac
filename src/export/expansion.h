#pragma once
// SPDX-License-Identifier: MIT
//
// How large an export may become. Messages share texts, and people and addresses theirs, so that a
// small file can make a document thousands of times its size; this is found out before anything is
// written.

#include <functional>

#include "export/text_sink.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// The bytes that an export of a transcript of this size may take without further confirmation.
[[nodiscard]] quint64 exportLimit(qsizetype transcriptSize);

/// Whether `write` writes more than `limit` bytes or, if it reads attachments, reads more than
/// that. Usually the sizes of the log's texts decide; otherwise it is run up to the limit, and its
/// output discarded.
[[nodiscard]] bool expandsBeyond(quint64 limit, const TesselChatLog& log,
                                 const ContactsStore& contacts, bool readsAttachments,
                                 const std::function<void(const ByteSink&)>& write);

}  // namespace vell
