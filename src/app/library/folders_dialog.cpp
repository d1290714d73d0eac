// SPDX-License-Identifier: MIT
#include "app/library/folders_dialog.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/library/library.h"
#include "app/library/library_window.h"

namespace vell {
namespace {

constexpr QSize foldersDialogSize(520, 320);

class FoldersDialog final : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(FoldersDialog)

  public:
    FoldersDialog(Library& library, QWidget& window)
        : QDialog(&window), library_(library), list_(new QListWidget) {
        setObjectName(QStringLiteral("libraryFolders"));
        setWindowTitle(tr("Library Folders"));
        resize(foldersDialogSize);
        list_->setAccessibleName(windowTitle());
        list_->setTextElideMode(Qt::ElideMiddle);
        auto* text =
            new QLabel(tr("The library shows the transcripts in these folders and in all "
                          "folders below them."));
        text->setWordWrap(true);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
        auto* add = buttons->addButton(tr("&Add Folder …"), QDialogButtonBox::ActionRole);
        remove_ = buttons->addButton(tr("&Remove"), QDialogButtonBox::ActionRole);
        remove_->setToolTip(tr("The files stay where they are"));
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(text);
        layout->addWidget(list_, 1);
        layout->addWidget(buttons);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
        connect(add, &QPushButton::clicked, this,
                [this] { chooseLibraryFolders(library_, *this); });
        connect(remove_, &QPushButton::clicked, this, [this] {
            library_.removeFolder(list_->currentItem()->data(Qt::UserRole).toString());
        });
        connect(list_, &QListWidget::currentRowChanged, this,
                [this](int row) { remove_->setEnabled(row >= 0); });
        connect(&library_, &Library::foldersChanged, this, [this] { fill(); });
        fill();
    }

  private:
    void fill() {
        list_->clear();
        for (const QString& folder : library_.folders()) {
            auto* item = new QListWidgetItem(QDir::toNativeSeparators(folder), list_);
            item->setData(Qt::UserRole, folder);
        }
        list_->setCurrentRow(list_->count() > 0 ? 0 : -1);
        remove_->setEnabled(list_->count() > 0);
    }

    Library& library_;
    QListWidget* list_;
    QPushButton* remove_ = nullptr;
};

}  // namespace

void showFoldersDialog(Library& library, QWidget& window) {
    auto* dialog = new FoldersDialog(library, window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

}  // namespace vell
