#pragma once
// SPDX-License-Identifier: MIT
//
// TextRenderSettings: every piece of decoration that the Markdown of a chat log has around
// session, day, minute and sender headings and around system messages, and the dates in all texts
// for people.

#include <QString>

#include "toolkit/date_formatters.h"

namespace vell {

struct TextRenderSettings {
    /// Dates read like the separators on screen. Belongs to the calling thread, as its formatters.
    TextRenderSettings() = default;
    /// Borrows the formatters.
    TextRenderSettings(const DateFormatter& day, const DateFormatter& time)
        : dayFormatter(day), timeFormatter(time) {}

    const QString sessionLinePrefix = QStringLiteral("\n---\n\n");
    const QString sessionPrefix = QStringLiteral("**");
    const QString sessionLineSuffix = QStringLiteral("**\n");
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
    const DateFormatter& dayFormatter = daySeparatorFormatter();
    const DateFormatter& timeFormatter = timeSeparatorFormatter();
};

}  // namespace vell
