#pragma once
// SPDX-License-Identifier: MIT
//
// DocumentTools: what a document window offers for finding one's way in a chat. Each tool is made
// when it is first used, so that windows open as fast as without them.

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

class DocumentTools final : public QObject {
    Q_OBJECT

  public:
    /// Owned by the window; what is jumped from is added to the history.
    DocumentTools(QMainWindow& window, const Services& services, JumpHistory& history);

    /// Adds "Go to Date …" and the steps from day to day; returns what needs a chat.
    [[nodiscard]] QList<QAction*> addGoCommands(QMenu& menu);
    /// Adds "Shared Items"; returns what needs a chat.
    [[nodiscard]] QList<QAction*> addViewCommands(QMenu& menu);
    /// The view of the chat, which must outlive the tools.
    void setTimeline(TimelineView& timeline);
    /// The view shows another log, marked as the shared calendar has it.
    void chatChanged();

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
    void widenFor(int points);
    /// Brings a row to the top of the view, below this many points of what is above it.
    void goTo(qsizetype row, int pointsAbove = 0);

    QMainWindow& window_;
    Services services_;
    JumpHistory& history_;
    TimelineView* timeline_ = nullptr;
    std::unique_ptr<ChatContents> contents_;  // null until it is first needed
    QPointer<GoToDateDialog> dateDialog_;
    QPointer<PictureViewer> viewer_;
    QPointer<SharedPane> sharedPane_;  // null until it is first shown
    QAction* sharedAction_ = nullptr;
};

}  // namespace vell
