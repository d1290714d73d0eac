#pragma once
// SPDX-License-Identifier: MIT
//
// ShownChat: what the pane of a chat shows: a file's log, or the log of many files.

#include <QString>
#include <memory>

#include "export/expansion.h"
#include "foundation/data.h"
#include "transcript/chat_log.h"

namespace vell {

struct ShownChat {
    std::shared_ptr<const TesselChatLog> log;
    /// Of the log's exports.
    std::shared_ptr<const ExpansionBound> expansion;
    /// Of the files that the log was read from, in bytes.
    qsizetype fileSize = 0;
    /// What a file that the chat is saved in is called, without extension.
    QString name;
    /// The file itself, where it is one and can be looked into.
    foundation::Data bytes{};
    /// Whether the file is damaged.
    bool isRecovered = false;
};

}  // namespace vell
