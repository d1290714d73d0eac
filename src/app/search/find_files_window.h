#pragma once
// SPDX-License-Identifier: MIT
//
// The window behind "Find iChat Files …": walks folders in the background and lists the transcripts
// it finds, sortable and filterable while it runs. Which folders is up to the user.

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

class SearchPlaces;

class FindFilesWindow final : public QWidget {
    Q_OBJECT

  public:
    /// Searches the folders, or the user's home and disks if there are none.
    FindFilesWindow(std::shared_ptr<FileReader> reader, ContactsStore& contacts,
                    const QStringList& folders, QWidget* parent = nullptr);

  Q_SIGNALS:
    /// The user wants these transcripts opened.
    void openRequested(const QStringList& paths);
    /// The user wants the folders that these transcripts are in to be in the library.
    void addToLibraryRequested(const QStringList& folders);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void buildLayout();
    [[nodiscard]] QWidget* placesColumn();
    void buildTable();
    void startOrStop();
    void start();
    void showState();
    void openSelected();
    /// The folder that holds all that is selected, or all that was found.
    void addToLibrary();

    FileWalker walker_;
    TranscriptTable table_;
    QSortFilterProxyModel sorted_;
    qint64 filesSeen_ = 0;
    QString currentFolder_;

    SearchPlaces* places_;
    QLineEdit* filter_ = nullptr;
    QCheckBox* hiddenFolders_ = nullptr;
    QPushButton* startStop_ = nullptr;
    QTableView* view_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* state_ = nullptr;
    QPushButton* add_ = nullptr;
    QPushButton* open_ = nullptr;
};

}  // namespace vell
