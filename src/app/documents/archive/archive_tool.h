#pragma once
// SPDX-License-Identifier: MIT
//
// ArchiveTool: "Show Archive" of a chat's window. The pane is made when it is first shown.

#include <QObject>
#include <QPointer>

class QAction;
class QMainWindow;
class QMenu;

namespace vell {

class ArchivePane;
class TimelineView;
struct ShownChat;

class ArchiveTool final : public QObject {
    Q_OBJECT

  public:
    /// Owned by the pane of the chat, whose chat and timeline are those.
    ArchiveTool(QMainWindow& pane, const ShownChat& chat, TimelineView* const& timeline);

    /// Adds the command; returns it, which needs a chat.
    [[nodiscard]] QAction* addCommandTo(QMenu& menu);
    /// The chat has gone.
    void close();
    /// The timeline shows the chat's messages with other marks.
    void chatChanged();

  private:
    void toggle();
    void makePane();

    QMainWindow& pane_;
    const ShownChat& chat_;
    TimelineView* const& timeline_;
    QPointer<ArchivePane> archive_;  // null until it is first shown
    QAction* action_ = nullptr;
};

}  // namespace vell
