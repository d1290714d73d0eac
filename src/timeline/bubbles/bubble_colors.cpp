// SPDX-License-Identifier: MIT
#include "timeline/bubbles/bubble_colors.h"

#include <QSet>

#include "transcript/chat_log.h"

namespace vell {

BubbleColors& BubbleColors::shared() {
    static BubbleColors colors;
    return colors;
}

Style::Aqua BubbleColors::styleForUser(const std::optional<TesselUserID>& userID, bool isOwn) {
    if (isOwn) return Style::Aqua::blueberry;
    if (!userID) return Style::Aqua::graphite;
    if (const auto known = colorMap_.constFind(*userID); known != colorMap_.cend()) return *known;
    const Style::Aqua style = styleList[static_cast<size_t>(styleIdx_)];
    colorMap_.insert(*userID, style);
    styleIdx_ = (styleIdx_ + 1) % static_cast<qint64>(styleList.size());
    return style;
}

void BubbleColors::present(const TesselChatLog& chatlog) {
    QSet<SharedUserID> known;
    SharedUserID last;
    for (const TesselChatLog::Event& event : chatlog.events()) {
        if (!event.sender || event.sender == last) continue;
        last = event.sender;
        if (known.contains(event.sender)) continue;
        known.insert(event.sender);
        styleForUser(event.sender, chatlog.isOwn(event.sender));
    }
}

}  // namespace vell
