// SPDX-License-Identifier: MIT
#include "app/search/search_places.h"

#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vell {
namespace {

constexpr int pathRole = Qt::UserRole;

}  // namespace

SearchPlaces::SearchPlaces(const QStringList& folders, QWidget* parent)
    : QWidget(parent), list_(new QListWidget) {
    list_->setObjectName(QStringLiteral("searchPlaces"));
    list_->setTextElideMode(Qt::ElideMiddle);
    auto* label = new QLabel(tr("Search &in"));
    label->setBuddy(list_);
    auto* choose = new QPushButton(tr("&Add Folder …"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(label);
    layout->addWidget(list_, 1);
    layout->addWidget(choose);
    for (const QString& folder : folders)
        add(folder, QDir(folder).dirName(), true);
    connect(choose, &QPushButton::clicked, this, &SearchPlaces::chooseFolder);
    connect(list_, &QListWidget::itemChanged, this, &SearchPlaces::changed);
}

void SearchPlaces::offer(const QList<FileWalker::Place>& places) {
    if (isOffered_) return;
    isOffered_ = true;
    const bool isChosen = list_->count() > 0;
    for (const FileWalker::Place& place : places) {
        const bool isSystem = place.kind == FileWalker::Place::Kind::system;
        QString name = place.name;
        if (place.kind == FileWalker::Place::Kind::home) name = tr("Home folder");
        if (isSystem) name = tr("System disk");
        add(place.path, name, !isChosen && !isSystem);
    }
}

QStringList SearchPlaces::searched() const {
    QStringList paths;
    for (int row = 0; row < list_->count(); ++row) {
        if (list_->item(row)->checkState() == Qt::Checked)
            paths.append(list_->item(row)->data(pathRole).toString());
    }
    return paths;
}

void SearchPlaces::add(const QString& path, const QString& name, bool isSearched) {
    const QSignalBlocker quiet(list_);
    auto* item = new QListWidgetItem(name.isEmpty() ? path : name, list_);
    item->setData(pathRole, path);
    item->setToolTip(QDir::toNativeSeparators(path));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(isSearched ? Qt::Checked : Qt::Unchecked);
}

void SearchPlaces::chooseFolder() {
    auto* dialog = new QFileDialog(this, tr("Add a Folder to Search"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& folders) {
        for (const QString& folder : folders)
            add(folder, QDir(folder).dirName(), true);
        Q_EMIT changed();
    });
    dialog->open();
}

}  // namespace vell
