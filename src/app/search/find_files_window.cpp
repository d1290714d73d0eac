// SPDX-License-Identifier: MIT
#include "app/search/find_files_window.h"

#include <QCheckBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMessageBox>
#include <QVBoxLayout>
#include <utility>

#include "app/search/search_places.h"

namespace vell {
namespace {

constexpr int placesWidth = 190;
constexpr qsizetype mostOpenedUnasked = 10;

QString title(const QStringList& folders) {
    if (folders.isEmpty()) return FindFilesWindow::tr("Find iChat Files");
    QStringList names;
    for (const QString& folder : folders) {
        const QString name = QDir(folder).dirName();
        names.append(name.isEmpty() ? folder : name);
    }
    return FindFilesWindow::tr("iChat Files in “%1”").arg(names.join(u", "));
}

}  // namespace

FindFilesWindow::FindFilesWindow(std::shared_ptr<FileReader> reader, ContactsStore& contacts,
                                 const QStringList& folders, QWidget* parent)
    : QWidget(parent, Qt::Window),
      table_(std::move(reader), contacts),
      places_(new SearchPlaces(folders)) {
    setObjectName(QStringLiteral("findFilesWindow"));
    setWindowTitle(title(folders));
    resize(1000, 560);

    sorted_.setSourceModel(&table_);
    sorted_.setSortRole(TranscriptTable::sortRole);
    sorted_.setSortLocaleAware(true);
    sorted_.setSortCaseSensitivity(Qt::CaseInsensitive);
    sorted_.setFilterKeyColumn(-1);
    sorted_.setFilterCaseSensitivity(Qt::CaseInsensitive);
    buildLayout();

    connect(&walker_, &FileWalker::placesKnown, places_, &SearchPlaces::offer);
    connect(&walker_, &FileWalker::found, &table_, &TranscriptTable::add);
    connect(&walker_, &FileWalker::progressed, this, [this](qint64 files, const QString& folder) {
        filesSeen_ = files;
        currentFolder_ = folder;
        showState();
    });
    connect(&walker_, &FileWalker::finished, this, &FindFilesWindow::showState);
    connect(&sorted_, &QAbstractItemModel::rowsInserted, this, &FindFilesWindow::showState);
    connect(&sorted_, &QAbstractItemModel::rowsRemoved, this, &FindFilesWindow::showState);
    connect(places_, &SearchPlaces::changed, this, &FindFilesWindow::start);
    walker_.start(folders, false);
    showState();
}

void FindFilesWindow::buildLayout() {
    filter_ = new QLineEdit;
    filter_->setPlaceholderText(tr("Filter by name, folder or participant"));
    filter_->setClearButtonEnabled(true);
    startStop_ = new QPushButton;
    buildTable();
    state_ = new QLabel;
    state_->setObjectName(QStringLiteral("searchState"));
    state_->setTextFormat(Qt::PlainText);
    state_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    progress_ = new QProgressBar;
    progress_->setRange(0, 0);
    progress_->setMaximumWidth(120);
    progress_->setTextVisible(false);
    add_ = new QPushButton(tr("Add to &Library"));
    add_->setObjectName(QStringLiteral("addToLibrary"));
    open_ = new QPushButton(tr("Open"));
    open_->setDefault(true);

    auto* found = new QVBoxLayout;
    found->addWidget(filter_);
    found->addWidget(view_, 1);
    auto* middle = new QHBoxLayout;
    middle->setSpacing(12);
    middle->addWidget(placesColumn());
    middle->addLayout(found, 1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(state_, 1);
    bottom->addWidget(progress_);
    bottom->addWidget(startStop_);
    bottom->addWidget(add_);
    bottom->addWidget(open_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->addLayout(middle, 1);
    layout->addLayout(bottom);

    connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) {
        sorted_.setFilterFixedString(text);
        showState();
    });
    connect(startStop_, &QPushButton::clicked, this, &FindFilesWindow::startOrStop);
    connect(add_, &QPushButton::clicked, this, &FindFilesWindow::addToLibrary);
    connect(open_, &QPushButton::clicked, this, &FindFilesWindow::openSelected);
    connect(view_, &QTableView::activated, this, &FindFilesWindow::openSelected);
    // The view activates its current row only, and after "select all" it may have none.
    view_->installEventFilter(this);
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { open_->setEnabled(view_->selectionModel()->hasSelection()); });
    open_->setEnabled(false);
}

QWidget* FindFilesWindow::placesColumn() {
    hiddenFolders_ = new QCheckBox(tr("&Hidden folders"));
    connect(hiddenFolders_, &QCheckBox::toggled, this, &FindFilesWindow::start);
    auto* column = new QWidget;
    column->setFixedWidth(placesWidth);
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins({});
    layout->addWidget(places_, 1);
    layout->addWidget(hiddenFolders_);
    return column;
}

void FindFilesWindow::buildTable() {
    view_ = new QTableView;
    view_->setAccessibleName(tr("Transcripts"));
    view_->setModel(&sorted_);
    view_->setSortingEnabled(true);
    view_->sortByColumn(TranscriptTable::dateColumn, Qt::DescendingOrder);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setTabKeyNavigation(false);
    view_->setShowGrid(false);
    view_->setWordWrap(false);
    view_->verticalHeader()->hide();
    QHeaderView* header = view_->horizontalHeader();
    header->setStretchLastSection(false);
    header->setHighlightSections(false);
    header->setSectionResizeMode(TranscriptTable::folderColumn, QHeaderView::Stretch);
    view_->setColumnWidth(TranscriptTable::nameColumn, 190);
    view_->setColumnWidth(TranscriptTable::dateColumn, 180);
    view_->setColumnWidth(TranscriptTable::sizeColumn, 80);
    view_->setColumnWidth(TranscriptTable::participantsColumn, 160);
    view_->setColumnWidth(TranscriptTable::messagesColumn, 80);
}

bool FindFilesWindow::eventFilter(QObject* object, QEvent* event) {
    if (object == view_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            openSelected();
            return true;
        }
    }
    return QWidget::eventFilter(object, event);
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
    walker_.cancel();
    table_.clear();
    filesSeen_ = 0;
    currentFolder_.clear();
    if (const QStringList folders = places_->searched(); !folders.isEmpty())
        walker_.start(folders, hiddenFolders_->isChecked());
    showState();
}

void FindFilesWindow::showState() {
    const bool running = walker_.isRunning();
    progress_->setVisible(running);
    add_->setEnabled(sorted_.rowCount() > 0);
    startStop_->setText(running ? tr("Stop") : tr("Search Again"));
    const QLocale locale;
    const QString all = locale.toString(table_.rowCount());
    const QString files = locale.toString(filesSeen_);
    QString state = filter_->text().isEmpty()
                        ? tr("%1 transcripts in %2 files").arg(all, files)
                        : tr("%1 of %2 transcripts in %3 files")
                              .arg(locale.toString(sorted_.rowCount()), all, files);
    if (running && !currentFolder_.isEmpty()) state += QStringLiteral(" — ") + currentFolder_;
    state_->setText(state);
}

void FindFilesWindow::addToLibrary() {
    const QModelIndexList selected = view_->selectionModel()->selectedRows();
    QString folder;
    const auto add = [&folder](const QModelIndex& index) {
        QString each = index.data(TranscriptTable::pathRole).toString();
        each.truncate(each.lastIndexOf(u'/') + 1);
        if (folder.isEmpty()) folder = each;
        while (!each.startsWith(folder))
            folder.truncate(folder.lastIndexOf(u'/', -2) + 1);
    };
    for (const QModelIndex& index : selected)
        add(index);
    for (int row = 0; selected.isEmpty() && row < sorted_.rowCount(); ++row)
        add(sorted_.index(row, 0));
    if (folder.size() > 1) folder.chop(1);
    Q_EMIT addToLibraryRequested({folder});
}

void FindFilesWindow::openSelected() {
    QStringList paths;
    for (const QModelIndex& index : view_->selectionModel()->selectedRows())
        paths.append(index.data(TranscriptTable::pathRole).toString());
    if (paths.size() <= mostOpenedUnasked) {
        Q_EMIT openRequested(paths);
        return;
    }
    auto* box = new QMessageBox(
        QMessageBox::Question, windowTitle(),
        tr("Open %n transcripts, each in a window of its own?", nullptr, int(paths.size())),
        QMessageBox::Open | QMessageBox::Cancel, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(box, &QMessageBox::finished, this, [this, paths](int answer) {
        if (answer == QMessageBox::Open) Q_EMIT openRequested(paths);
    });
    box->open();
}

}  // namespace vell
