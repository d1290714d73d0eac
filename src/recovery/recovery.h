#pragma once
// SPDX-License-Identifier: MIT
//
// Recovers what can be read of a damaged transcript, for use when TesselChatLog::fromData has
// failed and the user asks for it.
//
//     if (const auto recovered = recovery::recoverChatLog(bytes, date, calendar))
//     show(recovered->log);

#include <optional>

#include "transcript/chat_log.h"

namespace vell::recovery {

/// How much of a transcript was recovered.
struct Extent {
    qint64 found = 0;
    std::optional<qint64> expected;  ///< how many there were, as far as that is known
    qint64 damagedAfter = 0;         ///< bytes of the file

    /// "Recovered 412 of about 430 messages; the file is damaged after byte 81,920".
    [[nodiscard]] QString summary() const;
};

struct Recovered {
    /// The recovered messages. The first event is the extent's summary(); further system messages
    /// stand where messages are missing.
    TesselChatLog log;
    Extent extent;
};

/// Nothing when no message can be read. Each message is one of the original ones, whole: one with a
/// damaged part is missing. Takes time and memory in proportion to the file.
[[nodiscard]] std::optional<Recovered> recoverChatLog(const foundation::Data& data,
                                                      std::optional<foundation::Date> fileDate,
                                                      const foundation::Calendar& calendar);

/// An archive with what can be read of a damaged one, for looking into it.
struct RepairedArchive {
    foundation::Data data;
    bool keepsPlaces = true;  ///< objects are where they are in the file
};
[[nodiscard]] std::optional<RepairedArchive> repairedArchive(const foundation::Data& data);

}  // namespace vell::recovery
