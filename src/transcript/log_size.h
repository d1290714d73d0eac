#pragma once
// SPDX-License-Identifier: MIT
//
// How large the log of some messages will be, told before it is made: what a conversion reserves,
// and what a reader refuses when an archive's references multiply few bytes into many events.

#include <QtGlobal>
#include <memory>
#include <span>

#include "transcript/instant_message.h"

namespace vell {

/// Upper bounds.
struct LogSize {
    quint64 events = 0;
    quint64 bytes = 0;  ///< events, and text that they can't share with the messages
};

/// Counts each attributed string's own part once. Messages that are held elsewhere too cost a
/// little more time.
[[nodiscard]] LogSize estimateLogSize(
    std::span<const std::shared_ptr<const InstantMessage>> messages);

}  // namespace vell
