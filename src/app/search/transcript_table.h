#pragma once
// SPDX-License-Identifier: MIT
//
// TranscriptTable: the transcripts a search has found, as rows for a table view. Participants and
// the number of messages are filled in as the files are read, one after the other.

#include <QAbstractTableModel>
#include <QList>
#include <optional>

#include "app/documents/document_loader.h"
#include "app/search/file_walker.h"

namespace vell {

class TranscriptTable final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column {
        nameColumn,
        folderColumn,
        dateColumn,
        sizeColumn,
        participantsColumn,
        messagesColumn,
        columnCountValue
    };
    /// What rows sort by: dates and numbers as such, texts as shown.
    static constexpr int sortRole = Qt::UserRole;
    static constexpr int pathRole = Qt::UserRole + 1;

    /// Reads files with the loader's reader, on the loader's thread.
    explicit TranscriptTable(const DocumentLoader& loader, QObject* parent = nullptr);

    void add(const QList<FileWalker::Found>& files);
    void clear();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    struct Summary {
        QString participants;
        qint64 messages = 0;
    };
    struct Row {
        FileWalker::Found file;
        std::optional<Summary> summary;
        bool unreadable = false;
    };

    void summarise();
    void setSummary(int row, std::optional<Summary> summary);
    [[nodiscard]] QVariant shown(const Row& row, int column) const;
    [[nodiscard]] static QVariant sortKey(const Row& row, int column);

    std::shared_ptr<FileReader> reader_;
    std::shared_ptr<LoadThread::Queue> queue_;
    QList<Row> rows_;
    int nextSummary_ = 0;
    bool summarising_ = false;
    /// Replaced by clear(), so that a summary in progress is dropped.
    std::shared_ptr<TranscriptTable*> self_;
};

}  // namespace vell
