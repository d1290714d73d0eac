#pragma once
// SPDX-License-Identifier: MIT
//
// What the program shows when it is started without a file: what chats look like, the commands that
// find some, recent ones, and a place to drop others.

#include <QLayout>
#include <QListWidget>
#include <QWidget>

namespace vell {

class Commands;
class ContactsStore;
class PictureCache;
class RecentFiles;

class WelcomeWindow final : public QWidget {
    Q_OBJECT

  public:
    WelcomeWindow(Commands& commands, RecentFiles& recentFiles, ContactsStore& contacts,
                  PictureCache& pictures);

  private:
    void buildMenus(QLayout& layout);
    void fill();
    /// Asks for the first folder of a library that has none.
    void openLibrary();
    [[nodiscard]] QLayout* introduction();
    [[nodiscard]] QLayout* commandRow();
    [[nodiscard]] QWidget* recentList();

    Commands& commands_;
    RecentFiles& recentFiles_;
    QListWidget* list_ = nullptr;
};

}  // namespace vell
