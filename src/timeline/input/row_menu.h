#pragma once
// SPDX-License-Identifier: MIT
//
// RowMenu: what can be done with one row: copying it, and saving what it holds as archived.

#include <QMenu>

#include "transcript/chat_log.h"

namespace vell {

class TimelineView;

class RowMenu final : public QMenu {
    Q_OBJECT

  public:
    /// "Copy" takes the view's selection where there is one, else the row's text.
    RowMenu(TimelineView& view, const TesselChatLog::Event& event);

  private:
    void addPictureCommands(const TesselChatLog::Image& image);
    void addFileCommands(const TesselChatLog::File& file);

    TimelineView& view_;
};

}  // namespace vell
