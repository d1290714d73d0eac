#pragma once
// SPDX-License-Identifier: MIT
//
// What the program shows when it is started without a file: recent transcripts, and the two ways to
// others.

#include <QListWidget>
#include <QWidget>

namespace vell {

class RecentFiles;

class WelcomeWindow final : public QWidget {
    Q_OBJECT

  public:
    WelcomeWindow(RecentFiles& recent, bool offersSearch, QWidget* parent = nullptr);

  Q_SIGNALS:
    void openRequested(const QStringList& paths);
    void openDialogRequested();
    void findRequested();

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void fill();

    RecentFiles& recent_;
    QListWidget* list_ = nullptr;
};

}  // namespace vell
