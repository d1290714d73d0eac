// SPDX-License-Identifier: MIT
#include "app/search/transcript_table.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>
#include <utility>
#include <variant>

#include "foundation/guarded.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

qint64 messageCount(const TesselChatLog& log) {
    return std::count_if(log.events().begin(), log.events().end(), [](const auto& event) {
        return !std::holds_alternative<TesselChatLog::NewDay>(event.value) &&
               !std::holds_alternative<TesselChatLog::NewMinute>(event.value) &&
               !std::holds_alternative<TesselChatLog::User>(event.value);
    });
}

QString participants(const TesselChatLog& log) {
    return shownList(sorted(log.otherUserIDs()),
                     [](const TesselUserID& user) { return user.userID; });
}

}  // namespace

TranscriptTable::TranscriptTable(const DocumentLoader& loader, QObject* parent)
    : QAbstractTableModel(parent),
      reader_(loader.reader()),
      queue_(loader.queue()),
      self_(std::make_shared<TranscriptTable*>(this)) {}

void TranscriptTable::add(const QList<FileWalker::Found>& files) {
    if (files.isEmpty()) return;
    const int first = static_cast<int>(rows_.size());
    beginInsertRows({}, first, first + static_cast<int>(files.size()) - 1);
    for (const FileWalker::Found& file : files)
        rows_.append({file, std::nullopt, false});
    endInsertRows();
    if (!summarising_) summarise();
}

void TranscriptTable::clear() {
    beginResetModel();
    rows_.clear();
    nextSummary_ = 0;
    summarising_ = false;
    self_ = std::make_shared<TranscriptTable*>(this);
    endResetModel();
}

void TranscriptTable::summarise() {
    summarising_ = nextSummary_ < rows_.size();
    if (!summarising_) return;
    const int row = nextSummary_++;
    const std::weak_ptr<TranscriptTable*> self = self_;

    const auto finish = [self, row](std::optional<Summary> summary) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, row, summary = std::move(summary)] {
                if (const auto table = self.lock()) (*table)->setSummary(row, summary);
            },
            Qt::QueuedConnection);
    };
    const auto fail = [finish] { finish(std::nullopt); };
    foundation::runDetached(
        [reader = reader_, queue = queue_, path = rows_[row].file.path, self, finish, fail] {
            const auto summariseIt = [file = reader->read(path), self, finish] {
                if (self.expired()) return;
                if (!file->isRegularFile() || !file->contents) return finish(std::nullopt);
                const auto log = TesselChatLog::fromData(*file->contents, file->modificationDate,
                                                         foundation::Calendar::current());
                finish(Summary{participants(log), messageCount(log)});
            };
            queue->post(LoadThread::Priority::summary, foundation::guarded(summariseIt, fail));
        },
        [queue = queue_, fail] { queue->post(LoadThread::Priority::summary, fail); });
}

void TranscriptTable::setSummary(int row, std::optional<Summary> summary) {
    rows_[row].unreadable = !summary;
    rows_[row].summary = std::move(summary);
    Q_EMIT dataChanged(index(row, participantsColumn), index(row, messagesColumn));
    summarise();
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
            return QDir::toNativeSeparators(QFileInfo(row.file.path).path());
        case dateColumn:
            return locale.toString(row.file.modified, QLocale::ShortFormat);
        case sizeColumn:
            return locale.formattedDataSize(row.file.size);
        case participantsColumn:
            if (row.unreadable) return tr("can’t be read");
            return row.summary ? row.summary->participants : QString();
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
            return row.file.modified;
        case sizeColumn:
            return row.file.size;
        case participantsColumn:
            return row.summary ? row.summary->participants : QString();
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
            return tr("Date");
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
