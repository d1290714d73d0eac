#pragma once
// SPDX-License-Identifier: MIT
//
// RowMenu: what can be done with one row: opening it, copying it, and saving what it holds as
// archived.

#include <QMenu>
#include <functional>

#include "transcript/chat_log.h"

namespace vell {

class SelectionController;

class RowMenu final : public QMenu {
    Q_OBJECT

  public:
    /// "Copy" takes the selection where there is one, else the row's text; `open` opens a link or
    /// shows a picture large; null for other rows. Dialogs stand over the parent.
    RowMenu(QWidget& parent, const SelectionController& selection,
            const TesselChatLog::Event& event, const std::function<void()>& open);

  private:
    void addPictureCommands(const TesselChatLog::Image& image);
    void addFileCommands(const TesselChatLog::File& file);

    QWidget& parent_;
};

}  // namespace vell
