#pragma once
// SPDX-License-Identifier: MIT
//
// How large an export may become. Messages share texts, and people and addresses theirs, so that a
// small file can make a document thousands of times its size; this is found out before anything is
// written.

#include <functional>
#include <utility>
#include <vector>

#include "export/text_sink.h"
#include "transcript/user_id.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// The bytes that an export of a transcript of this size may take without further confirmation.
[[nodiscard]] quint64 exportLimit(qsizetype transcriptSize);

/// What a format writes besides the log itself.
struct ExpansionExtras {
    quint64 perEvent = 0;      ///< bytes
    bool hasPictures = false;  ///< in the document, as base64
};

/// An upper bound of what a document of any format takes, whatever part of the log it holds. Found
/// in one pass over the log; names may change afterwards.
class ExpansionBound {
  public:
    explicit ExpansionBound(const TesselChatLog& log, const ExpansionExtras& extras = {});
    [[nodiscard]] quint64 bytes(const ContactsStore& contacts) const;

  private:
    quint64 withoutUsers_;
    std::vector<std::pair<SharedUserID, quint64>> users_;  ///< and how often each is written
};

/// Whether `write` writes more than `limit` bytes. Usually the bound decides; otherwise it is run
/// up to the limit, and its output discarded.
[[nodiscard]] bool expandsBeyond(quint64 limit, const ExpansionBound& bound,
                                 const ContactsStore& contacts,
                                 const std::function<void(const ByteSink&)>& write);

/// Whether more than `limit` bytes are attached; each slice of the file counts once, and slices may
/// overlap.
[[nodiscard]] bool attachmentsExceed(quint64 limit, const TesselChatLog& log);

}  // namespace vell
