#pragma once
// SPDX-License-Identifier: MIT
//
// ChatTools: what the pane of a chat offers for finding one's way in it. Each tool is made when it
// is first used, so that windows open as fast as without them.

#include <QList>
#include <QObject>
#include <QPointer>
#include <memory>

#include "app/documents/chat_contents.h"
#include "app/documents/services.h"

class QAction;
class QMainWindow;
class QMenu;

namespace vell {

class GoToDateDialog;
class JumpHistory;
class PictureViewer;
class SharedPane;
class TimelineView;

/// Of the view's height, above a message that was gone to.
constexpr int contextPart = 4;

class ChatTools final : public QObject {
    Q_OBJECT

  public:
    /// Owned by the pane; what is jumped from is added to the history.
    ChatTools(QMainWindow& pane, const Services& services, JumpHistory& history);

    /// Adds "Go to Date …" and the steps from day to day; returns what needs a chat.
    [[nodiscard]] QList<QAction*> addGoCommands(QMenu& menu);
    /// Adds "Shared Items"; returns what needs a chat.
    [[nodiscard]] QList<QAction*> addViewCommands(QMenu& menu);
    /// The view of the chat, which lives until close() or another one.
    void setTimeline(TimelineView& timeline);
    /// Closes what shows rows of the chat; the pane comes back with another chat.
    void close();
    /// The view shows another log, marked as the shared calendar has it.
    void chatChanged();
    /// Whether something is open that shows rows of the chat, and would have to be closed.
    [[nodiscard]] bool isViewing() const;

  Q_SIGNALS:
    /// For the status bar.
    void noticed(const QString& text);

  private:
    [[nodiscard]] ChatContents& contents();
    /// The row that is read: the keyboard's where it is on the screen, else the first one.
    [[nodiscard]] qsizetype readRow() const;
    /// The row at which the row's day begins; -1 when there is no day yet.
    [[nodiscard]] qsizetype dayOf(qsizetype row) const;
    void goToDate();
    void goToNeighbouringDay(int direction);
    void openPicture(qsizetype row);
    void toggleSharedPane();
    void showSharedPane();
    void makeSharedPane();
    void showPaneAgain(int width);
    /// Brings a row to the top of the view, below this many points of what is above it.
    void goTo(qsizetype row, int pointsAbove = 0);

    QMainWindow& pane_;
    Services services_;
    JumpHistory& history_;
    TimelineView* timeline_ = nullptr;
    std::unique_ptr<ChatContents> contents_;  // null until it is first needed
    QPointer<GoToDateDialog> dateDialog_;
    QPointer<PictureViewer> viewer_;
    QPointer<SharedPane> sharedPane_;  // null until it is first shown
    bool hadPane_ = false;             // in the chat that was shown before
    QAction* sharedAction_ = nullptr;  // null where there is no such command
};

}  // namespace vell
