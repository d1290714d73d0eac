#pragma once
// SPDX-License-Identifier: MIT
//
// RowMenu: what can be done with one row: copying it, and saving what it holds as archived.

#include <QMenu>

#include "transcript/chat_log.h"

namespace vell {

class SelectionController;

class RowMenu final : public QMenu {
    Q_OBJECT

  public:
    /// "Copy" takes the selection where there is one, else the row's text. Dialogs stand over the
    /// parent.
    RowMenu(QWidget& parent, const SelectionController& selection,
            const TesselChatLog::Event& event);

  private:
    void addPictureCommands(const TesselChatLog::Image& image);
    void addFileCommands(const TesselChatLog::File& file);

    QWidget& parent_;
};

}  // namespace vell
