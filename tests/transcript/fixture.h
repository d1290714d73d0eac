#pragma once
// SPDX-License-Identifier: MIT
//
// Messages and logs for tests of the conversion: the root array is handed to it by a class
// registry whose non-keyed unarchiver returns just that.

#include <memory>
#include <vector>

#include "transcript/chat_log.h"
#include "transcript/instant_message.h"

namespace vell::test {

using Messages = std::vector<std::shared_ptr<const InstantMessage>>;
using Presentities = std::vector<std::shared_ptr<const Presentity>>;

std::shared_ptr<const Presentity> person(const char* account,
                                         std::optional<QString> service = std::nullopt);

/// A string of one run without attributes; no run when it is empty.
std::shared_ptr<const foundation::AttributedString> text(const QString& string);

/// An instant as "2009-07-04T13:04:05.250Z".
foundation::Date at(const char* iso8601);

/// A root array: the protocol's name, a string, the messages, the participants.
foundation::Value root(const QString& protocolName, const Messages& messages,
                       const Presentities& participants = {});

/// What a transcript with this root becomes.
TesselChatLog convert(const foundation::Value& root, const char* zone = "UTC",
                      std::optional<foundation::Date> fileDate = std::nullopt);

/// The events, one a line: kind, sender in front, text or the like behind.
std::vector<std::string> summary(const TesselChatLog& log);

/// Keeps the lines that are printed while it lives.
class PrintedLines {
  public:
    PrintedLines();
    ~PrintedLines();
    PrintedLines(const PrintedLines&) = delete;
    PrintedLines& operator=(const PrintedLines&) = delete;
    std::vector<std::string> lines;
};

}  // namespace vell::test
