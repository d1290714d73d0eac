#pragma once
// SPDX-License-Identifier: MIT
//
// ArchivePane: what is stored in a chat's file, beside the chat. A thread of its own opens the
// archive; the tree and the timeline follow each other's selection.

#include <QDockWidget>
#include <memory>
#include <optional>

#include "app/documents/archive/message_links.h"
#include "app/documents/shown_chat.h"

class QLabel;

namespace vell {

class ArchiveView;
class CallbackGuard;
class TimelineView;

class ArchivePane final : public QDockWidget {
    Q_OBJECT

  public:
    /// Begins to read. The view must outlive the pane.
    ArchivePane(const ShownChat& chat, TimelineView& timeline, QWidget* window);
    ~ArchivePane() override;

    /// The timeline shows the same messages in another log.
    void setLog(const TesselChatLog& log);
    void focusTree();

  Q_SIGNALS:
    /// The keyboard goes back to the chat.
    void left();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    struct Reading;
    [[nodiscard]] QWidget* buildTitle();
    void take(Reading& reading);
    void showMessage(quint64 object);
    void showObject(qsizetype row);

    TimelineView& timeline_;
    std::shared_ptr<CallbackGuard> callbacks_;
    MessageLinks links_;
    ArchiveView* view_;
    QLabel* problem_;
    bool isLeading_ = false;  // the timeline follows
};

}  // namespace vell
