#pragma once
// SPDX-License-Identifier: MIT
//
// SharedPane: what was shared in a chat, beside it: pictures, links and files.

#include <QDockWidget>
#include <array>
#include <memory>

#include "app/documents/chat_contents.h"

class QStackedWidget;
class QTabBar;

namespace vell {

class ContactsStore;
class PictureCache;
class SharedView;

class SharedPane final : public QDockWidget {
    Q_OBJECT

  public:
    /// The store and the cache must outlive the pane.
    SharedPane(const std::shared_ptr<const TesselChatLog>& log, PictureCache& pictures,
               const ContactsStore& contacts, QWidget* window);

    /// Fills the pane; shows the first kind that there is something of.
    void setContents(const ChatContents& contents);
    void focusItems();

  Q_SIGNALS:
    void chosen(qsizetype row);
    void opened(qsizetype row);
    /// The keyboard goes back to the chat.
    void left();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    [[nodiscard]] QWidget* buildTitle();

    QTabBar* tabs_;
    QStackedWidget* pages_;
    std::array<SharedView*, sharedKinds.size()> views_{};
};

}  // namespace vell
