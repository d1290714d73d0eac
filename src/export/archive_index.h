#pragma once
// SPDX-License-Identifier: MIT
//
// The index of many chats: a page that leads to the pages of all of them, by the people they are
// with and by month.
//
//     index.push_back(indexEntry(log, context, "Chats/2009/ann.html"));
//     writeArchiveIndex(std::move(index), context, sink);

#include <QString>
#include <map>
#include <utility>
#include <vector>

#include "export/text_sink.h"
#include "transcript/user_id.h"

namespace vell {

class FormatContext;
class ContactsStore;
class TesselChatLog;

/// Everybody in a chat but its owner, who is alone in notes to himself.
struct ChatPartners {
    /// By account; several accounts of one contact are one. Equal for the same people.
    QString key;
    QString names;  ///< for people
};
[[nodiscard]] ChatPartners partnersIn(const TesselChatLog& log, const ContactsStore& contacts);

struct IndexEntry {
    struct Month {
        qint64 messages = 0;
        int day = 0;     ///< the first
        QString anchor;  ///< of that day, or of its first message, in the page
    };
    using YearAndMonth = std::pair<int, int>;  ///< zeros: not dated

    QString page;  ///< relative to the index, not encoded
    ChatPartners partners;
    std::map<YearAndMonth, Month> months;
};

[[nodiscard]] IndexEntry indexEntry(const TesselChatLog& log, const FormatContext& context,
                                    const QString& page);

/// What the output throws passes through.
void writeArchiveIndex(std::vector<IndexEntry> entries, const FormatContext& context,
                       const ByteSink& output);

}  // namespace vell
