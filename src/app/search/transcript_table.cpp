// SPDX-License-Identifier: MIT
#include "app/search/transcript_table.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <utility>

#include "foundation/guarded.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/shown_text.h"

namespace vell {

TranscriptTable::TranscriptTable(std::shared_ptr<FileReader> reader, ContactsStore& contacts,
                                 QObject* parent)
    : QAbstractTableModel(parent),
      reader_(std::move(reader)),
      contacts_(contacts),
      callbacks_(std::make_shared<CallbackGuard>(this)) {
    connect(&contacts_, &ContactsStore::addressToContactChanged, this,
            &TranscriptTable::updateNames);
}

TranscriptTable::~TranscriptTable() {
    callbacks_->close();
}

void TranscriptTable::add(const QList<FileWalker::Found>& files) {
    if (files.isEmpty()) return;
    const int first = static_cast<int>(rows_.size());
    beginInsertRows({}, first, first + static_cast<int>(files.size()) - 1);
    for (const FileWalker::Found& file : files)
        rows_.append({file, file.path.left(file.path.lastIndexOf(u'/') + 1), {}, {}, false});
    endInsertRows();
    for (qsizetype row = first; row < rows_.size(); ++row)
        updateCommonFolder(rows_[row].folder);
    if (!summarising_) summarise();
}

/// Folders are shown below the one that all files are in.
void TranscriptTable::updateCommonFolder(const QString& folder) {
    if (commonFolder_.isEmpty()) commonFolder_ = folder;
    if (folder.startsWith(commonFolder_)) return;
    while (!folder.startsWith(commonFolder_))
        commonFolder_.truncate(commonFolder_.lastIndexOf(u'/', -2) + 1);
    Q_EMIT dataChanged(index(0, folderColumn), index(rowCount() - 1, folderColumn));
}

void TranscriptTable::clear() {
    beginResetModel();
    rows_.clear();
    commonFolder_.clear();
    nextSummary_ = 0;
    summarising_ = false;
    callbacks_->close();
    callbacks_ = std::make_shared<CallbackGuard>(this);
    endResetModel();
}

void TranscriptTable::summarise() {
    summarising_ = nextSummary_ < rows_.size();
    if (!summarising_) return;
    const int row = nextSummary_++;
    const auto finish = [this, callbacks = callbacks_,
                         row](std::optional<TranscriptSummary> summary) {
        callbacks->post([this, callbacks, row, summary = std::move(summary)] {
            if (callbacks == callbacks_) setSummary(row, summary);
        });
    };
    foundation::runDetached([reader = reader_, path = rows_[row].file.path,
                             finish] { finish(TranscriptSummary::read(*reader, path)); },
                            [finish] { finish(std::nullopt); });
}

void TranscriptTable::setSummary(int row, std::optional<TranscriptSummary> summary) {
    rows_[row].unreadable = !summary;
    if (summary) rows_[row].participants = participants(*summary);
    rows_[row].summary = std::move(summary);
    Q_EMIT dataChanged(index(row, 0), index(row, columnCountValue - 1));
    summarise();
}

void TranscriptTable::updateNames() {
    if (rows_.isEmpty()) return;
    for (Row& row : rows_)
        if (row.summary) row.participants = participants(*row.summary);
    Q_EMIT dataChanged(index(0, participantsColumn), index(rowCount() - 1, participantsColumn));
}

QString TranscriptTable::participants(const TranscriptSummary& summary) const {
    return shownList(summary.participants, [this](const TesselUserID& user) {
        return shownText(senderName(user, contacts_)).simplified();
    });
}

QString TranscriptTable::shownFolder(const Row& row) const {
    // Of the common folder, whose files have nothing else to show, the name.
    const qsizetype shared = row.folder.size() == commonFolder_.size()
                                 ? commonFolder_.lastIndexOf(u'/', -2) + 1
                                 : commonFolder_.size();
    const QString part = row.folder.sliced(shared);
    return part.isEmpty() ? row.folder : QDir::toNativeSeparators(part.chopped(1));
}

int TranscriptTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TranscriptTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnCountValue;
}

QVariant TranscriptTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Row& row = rows_[index.row()];
    switch (role) {
        case Qt::DisplayRole:
            return shown(row, index.column());
        case Qt::ToolTipRole:
        case pathRole:
            return row.file.path;
        case Qt::TextAlignmentRole:
            return int(index.column() == sizeColumn || index.column() == messagesColumn
                           ? Qt::AlignRight | Qt::AlignVCenter
                           : Qt::AlignLeft | Qt::AlignVCenter);
        case sortRole:
            return sortKey(row, index.column());
        default:
            return {};
    }
}

QVariant TranscriptTable::shown(const Row& row, int column) const {
    const QLocale locale;
    switch (column) {
        case nameColumn:
            return QFileInfo(row.file.path).completeBaseName();
        case folderColumn:
            return shownFolder(row);
        case dateColumn:
            return row.summary && row.summary->days ? shownDays(*row.summary->days) : QString();
        case sizeColumn:
            return locale.formattedDataSize(row.file.size);
        case participantsColumn:
            if (row.unreadable) return tr("can’t be read");
            return row.participants;
        case messagesColumn:
            return row.summary ? locale.toString(row.summary->messages) : QString();
        default:
            return {};
    }
}

QVariant TranscriptTable::sortKey(const Row& row, int column) {
    switch (column) {
        case nameColumn:
            return QFileInfo(row.file.path).completeBaseName();
        case folderColumn:
            return row.file.path;
        case dateColumn:
            return row.summary && row.summary->days ? row.summary->days->first : QDate();
        case sizeColumn:
            return row.file.size;
        case participantsColumn:
            return row.participants;
        case messagesColumn:
            return row.summary ? row.summary->messages : qint64{-1};
        default:
            return {};
    }
}

QVariant TranscriptTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
        case nameColumn:
            return tr("Name");
        case folderColumn:
            return tr("Folder");
        case dateColumn:
            return tr("Days");
        case sizeColumn:
            return tr("Size");
        case participantsColumn:
            return tr("Participants");
        case messagesColumn:
            return tr("Messages");
        default:
            return {};
    }
}

}  // namespace vell
