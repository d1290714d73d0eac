#pragma once
// SPDX-License-Identifier: MIT
//
// What is found in a damaged archive, before it becomes a chat log.

#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/data.h"
#include "recovery/recovery.h"
#include "transcript/instant_message.h"
#include "transcript/presentity.h"

namespace vell::recovery {

struct Messages {
    /// In the order of the conversation; null where one or more are lost.
    std::vector<std::shared_ptr<const InstantMessage>> slots;
    /// How many there were, as far as that is known.
    std::optional<qint64> expected;
    std::optional<QString> service;
    std::vector<std::shared_ptr<const Presentity>> participants;
    /// Offset of the first byte that couldn't be read as what it should be.
    qint64 damagedAfter = 0;

    /// Gaps side by side are one.
    void addGap() {
        if (slots.empty() || slots.back()) slots.emplace_back();
    }
};

/// Whether a message has the parts without which it says nothing, or something wrong.
[[nodiscard]] bool isComplete(const InstantMessage& message);

/// Of a binary or XML keyed archive; nothing when none of its messages can be read.
[[nodiscard]] std::optional<Messages> keyedMessages(const foundation::Data& data);

/// The archive that they are found in.
[[nodiscard]] std::optional<RepairedArchive> repairedKeyedArchive(const foundation::Data& data);

}  // namespace vell::recovery
