#pragma once
// SPDX-License-Identifier: MIT
//
// Run: one typed piece of a message's text. extractRuns cuts an attributed string into them:
// neighbouring plain stretches become one run, links and attachments stand for themselves.

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "foundation/attributed_string.h"
#include "transcript/chat_log.h"

namespace vell {

struct PlainRun {
    QString text;
};
struct FileRun {
    std::shared_ptr<const foundation::FileWrapper> wrapper;  ///< never null
    std::optional<QString> path;
};
/// A link's and a picture's payloads are those of their events.
using Run = std::variant<PlainRun, TesselChatLog::Link, TesselChatLog::Image, FileRun>;

struct Extraction {
    std::vector<Run> runs;
    QStringList errors;  ///< lines to print, one for each attachment that holds nothing
};
/// The runs of the whole string; none when it is empty. A run that covers the whole text shares its
/// QString. The text of a range with half a character at its edge is empty; an attachment that
/// holds nothing is an error and stays text.
[[nodiscard]] Extraction extractRuns(const foundation::AttributedString& string);
/// Appends them instead, so that one vector can serve many strings.
void extractRuns(const foundation::AttributedString& string, Extraction& result);

/// What extractRuns makes of the string, at most.
struct RunCensus {
    std::size_t runs = 0;
    std::size_t copiedUnits = 0;  ///< UTF-16 units that the runs can't share with the string
};
[[nodiscard]] RunCensus countRuns(const foundation::AttributedString& string);

}  // namespace vell
