#pragma once
// SPDX-License-Identifier: MIT
//
// The window behind "Find iChat Files …": walks folders in the background and lists the transcripts
// it finds, sortable and filterable while it runs.

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QWidget>

#include "app/search/file_walker.h"
#include "app/search/transcript_table.h"

class QCheckBox;

namespace vell {

class FindFilesWindow final : public QWidget {
    Q_OBJECT

  public:
    /// Searches the folders, or the user's home and disks if there are none.
    FindFilesWindow(const DocumentLoader& loader, QStringList folders, QWidget* parent = nullptr);

  Q_SIGNALS:
    /// The user wants this transcript opened.
    void openRequested(const QString& path);

  private:
    void buildLayout();
    void startOrStop();
    void start();
    void showState(const QString& folder = {});
    void openSelected();

    QStringList folders_;
    FileWalker walker_;
    TranscriptTable table_;
    QSortFilterProxyModel sorted_;
    qint64 filesSeen_ = 0;

    QLineEdit* filter_ = nullptr;
    QCheckBox* hiddenFolders_ = nullptr;
    QPushButton* startStop_ = nullptr;
    QTableView* view_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* state_ = nullptr;
    QPushButton* open_ = nullptr;
};

}  // namespace vell
