#pragma once
// SPDX-License-Identifier: MIT
//
// What the program shows when it is started without a file: recent transcripts, and the commands
// that find others.

#include <QListWidget>
#include <QWidget>

namespace vell {

class Commands;
class RecentFiles;

class WelcomeWindow final : public QWidget {
    Q_OBJECT

  public:
    WelcomeWindow(Commands& commands, RecentFiles& recentFiles);

  private:
    void fill();
    [[nodiscard]] QWidget* commandColumn();
    [[nodiscard]] QWidget* recentColumn();

    Commands& commands_;
    RecentFiles& recentFiles_;
    QListWidget* list_ = nullptr;
};

}  // namespace vell
