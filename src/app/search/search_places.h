#pragma once
// SPDX-License-Identifier: MIT
//
// SearchPlaces: the list of places that a search looks through, each with a check box, and a
// chooser for further folders.

#include <QListWidget>
#include <QStringList>
#include <QWidget>

#include "app/search/file_walker.h"

namespace vell {

class SearchPlaces final : public QWidget {
    Q_OBJECT

  public:
    /// Searches the folders; without any, the home folder and the disks, once they are known.
    explicit SearchPlaces(const QStringList& folders, QWidget* parent = nullptr);

    /// Offers what the system has; later calls do nothing.
    void offer(const QList<FileWalker::Place>& places);
    /// The folders to search; nothing before offer() unless folders were given.
    [[nodiscard]] QStringList searched() const;

  Q_SIGNALS:
    /// The user wants other places searched.
    void changed();

  private:
    void add(const QString& path, const QString& name, bool isSearched);
    void chooseFolder();

    QListWidget* list_;
    bool isOffered_ = false;
};

}  // namespace vell
