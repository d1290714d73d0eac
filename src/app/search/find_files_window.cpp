// SPDX-License-Identifier: MIT
#include "app/search/find_files_window.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QVBoxLayout>
#include <utility>

namespace vell {
FindFilesWindow::FindFilesWindow(const DocumentLoader& loader, QStringList folders, QWidget* parent)
    : QWidget(parent, Qt::Window), folders_(std::move(folders)), table_(loader) {
    setObjectName(QStringLiteral("findFilesWindow"));
    setWindowTitle(folders_.isEmpty() ? tr("Find iChat Files")
                                      : tr("iChat Files in “%1”").arg(folders_.join(u", ")));
    resize(900, 520);

    sorted_.setSourceModel(&table_);
    sorted_.setSortRole(TranscriptTable::sortRole);
    sorted_.setSortLocaleAware(true);
    sorted_.setSortCaseSensitivity(Qt::CaseInsensitive);
    sorted_.setFilterKeyColumn(-1);
    sorted_.setFilterCaseSensitivity(Qt::CaseInsensitive);
    buildLayout();

    connect(&walker_, &FileWalker::found, &table_, &TranscriptTable::add);
    connect(&walker_, &FileWalker::progressed, this, [this](qint64 files, const QString& folder) {
        filesSeen_ = files;
        showState(folder);
    });
    connect(&walker_, &FileWalker::finished, this, [this] { showState(); });
    start();
}

void FindFilesWindow::buildLayout() {
    filter_ = new QLineEdit;
    filter_->setPlaceholderText(tr("Filter by name, folder or participant"));
    filter_->setClearButtonEnabled(true);
    hiddenFolders_ = new QCheckBox(tr("Hidden folders"));
    startStop_ = new QPushButton;
    view_ = new QTableView;
    view_->setModel(&sorted_);
    view_->setSortingEnabled(true);
    view_->sortByColumn(TranscriptTable::dateColumn, Qt::DescendingOrder);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setShowGrid(false);
    view_->setAlternatingRowColors(true);
    view_->setWordWrap(false);
    view_->verticalHeader()->hide();
    view_->horizontalHeader()->setStretchLastSection(false);
    view_->horizontalHeader()->setSectionResizeMode(TranscriptTable::folderColumn,
                                                    QHeaderView::Stretch);
    view_->setColumnWidth(TranscriptTable::nameColumn, 220);
    view_->setColumnWidth(TranscriptTable::dateColumn, 130);
    view_->setColumnWidth(TranscriptTable::participantsColumn, 180);
    state_ = new QLabel;
    state_->setTextFormat(Qt::PlainText);
    state_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    progress_ = new QProgressBar;
    progress_->setRange(0, 0);
    progress_->setMaximumWidth(120);
    progress_->setTextVisible(false);
    open_ = new QPushButton(tr("Open"));
    open_->setDefault(true);

    auto* top = new QHBoxLayout;
    top->addWidget(filter_, 1);
    top->addWidget(hiddenFolders_);
    top->addWidget(startStop_);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(state_, 1);
    bottom->addWidget(progress_);
    bottom->addWidget(open_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(view_, 1);
    layout->addLayout(bottom);

    connect(filter_, &QLineEdit::textChanged, &sorted_,
            &QSortFilterProxyModel::setFilterFixedString);
    connect(hiddenFolders_, &QCheckBox::toggled, this, &FindFilesWindow::start);
    connect(startStop_, &QPushButton::clicked, this, &FindFilesWindow::startOrStop);
    connect(open_, &QPushButton::clicked, this, &FindFilesWindow::openSelected);
    connect(view_, &QTableView::activated, this, [this](const QModelIndex& index) {
        Q_EMIT openRequested(index.data(TranscriptTable::pathRole).toString());
    });
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { open_->setEnabled(view_->selectionModel()->hasSelection()); });
    open_->setEnabled(false);
}

void FindFilesWindow::startOrStop() {
    if (walker_.isRunning()) {
        walker_.cancel();
        showState();
    } else {
        start();
    }
}

void FindFilesWindow::start() {
    table_.clear();
    filesSeen_ = 0;
    walker_.start(folders_, hiddenFolders_->isChecked());
    showState();
}

void FindFilesWindow::showState(const QString& folder) {
    const bool running = walker_.isRunning();
    progress_->setVisible(running);
    startStop_->setText(running ? tr("Stop") : tr("Search Again"));
    const QString counts =
        tr("%1 transcripts in %2 files")
            .arg(QLocale().toString(table_.rowCount()), QLocale().toString(filesSeen_));
    state_->setText(running && !folder.isEmpty() ? counts + QStringLiteral(" — ") + folder
                                                 : counts);
}

void FindFilesWindow::openSelected() {
    for (const QModelIndex& index : view_->selectionModel()->selectedRows())
        Q_EMIT openRequested(index.data(TranscriptTable::pathRole).toString());
}

}  // namespace vell
