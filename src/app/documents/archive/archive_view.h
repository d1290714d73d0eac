#pragma once
// SPDX-License-Identifier: MIT
//
// ArchiveView: the tree of an archive: references lead to their objects, data is saved as it is.

#include <QTreeView>

class QAction;

namespace vell {

class ArchiveModel;

class ArchiveView final : public QTreeView {
    Q_OBJECT

  public:
    ArchiveView();

    /// Owns the model.
    void setArchive(ArchiveModel* model);
    [[nodiscard]] ArchiveModel* archive() const { return archive_; }
    /// Selects an object and brings it on the screen.
    void goToObject(quint64 number);

  Q_SIGNALS:
    /// Another object was selected, or a part of it.
    void objectChosen(quint64 number);

  protected:
    bool event(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    QAction* addCommand(const QString& text, const QKeySequence& key,
                        void (ArchiveView::*command)());
    void follow();
    void copyValue();
    void saveValue();

    ArchiveModel* archive_ = nullptr;  // null while it is read
    bool isFollowing_ = false;
    QAction* followAction_;
    QAction* copyAction_;
    QAction* saveAction_;
};

}  // namespace vell
