#pragma once
// SPDX-License-Identifier: MIT
//
// BubbleColors: gives every participant one bubble colour for as long as the program runs, over all
// windows, in the order in which they are first asked for. GUI thread only.

#include <QHash>
#include <array>
#include <optional>

#include "toolkit/participant_styles.h"
#include "transcript/user_id.h"

namespace vell {

class TesselChatLog;

class BubbleColors {
  public:
    /// What other participants get, in this order, then again from the start.
    static constexpr auto& styleList = participantStyles;

    /// The one that all windows share.
    static BubbleColors& shared();

    /// Blueberry for the owner's messages, graphite for those without a sender; neither is
    /// recorded.
    Style::Aqua styleForUser(const std::optional<TesselUserID>& userID, bool isOwn);

    /// Asks for the colours of everyone who wrote in a log, in the order of the events: nothing
    /// then depends on what happens to be painted first.
    void present(const TesselChatLog& chatlog);

    [[nodiscard]] const QHash<TesselUserID, Style::Aqua>& colorMap() const { return colorMap_; }
    /// The position in styleList that the next new participant gets.
    [[nodiscard]] qint64 styleIdx() const { return styleIdx_; }

  private:
    QHash<TesselUserID, Style::Aqua> colorMap_;
    qint64 styleIdx_ = 0;
};

}  // namespace vell
