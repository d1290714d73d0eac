#pragma once
// SPDX-License-Identifier: MIT
//
// TextRenderSettings: every piece of decoration that the Markdown of a chat log has around day,
// minute and sender headings and around system messages. They are constants.

#include <QString>

#include "toolkit/date_formatters.h"
#include "transcript/chat_log.h"

namespace vell {

struct TesselChatLog::TextRenderSettings {
    /// Takes the formatters of the calling thread and so belongs to it.
    TextRenderSettings() = default;

    const QString dayLinePrefix = QStringLiteral("\n");
    const QString dayPrefix = QStringLiteral("# ");
    const QString dayLineSuffix = QStringLiteral("\n");
    const QString timeLinePrefix = QStringLiteral("\n");
    const QString timePrefix = QStringLiteral("### ");
    const QString timeLineSuffix = QStringLiteral("\n");
    const QString newUserLinePrefix = QStringLiteral("\n");
    const QString newUserPrefix = QStringLiteral("*");
    const QString newUserLineSuffix = QStringLiteral(":*\n");
    const QString systemLinePrefix = QStringLiteral("\n---\n");
    const QString systemPrefix = QStringLiteral("_");
    const QString systemSuffix = QStringLiteral("_\n---\n\n");
    const bool quoteOtherMessages = true;
    /// The ones that separators on screen are made with.
    const DateFormatter& dayFormatter = daySeparatorFormatter();
    const DateFormatter& timeFormatter = timeSeparatorFormatter();
};

}  // namespace vell
