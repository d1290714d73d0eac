#pragma once
// SPDX-License-Identifier: MIT
//
// A chat divided into its years: a log of its own for each, with the headings of the sessions that
// reach into it.

#include <map>

#include "transcript/chat_log.h"

namespace vell {

/// By year on the calendar's clocks; 0 is for what no calendar expresses. No message is lost.
[[nodiscard]] std::map<int, TesselChatLog> chatYears(const TesselChatLog& log,
                                                     const foundation::Calendar& calendar);

}  // namespace vell
