#pragma once
// SPDX-License-Identifier: MIT
//
// Estimates how large the log of some messages will be before it is made: conversions reserve that
// much, and readers refuse archives whose references multiply few bytes into many events.

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

/// Counts each attributed string once. Messages that are held elsewhere too take a little longer.
[[nodiscard]] LogSize estimateLogSize(
    std::span<const std::shared_ptr<const InstantMessage>> messages);

}  // namespace vell
