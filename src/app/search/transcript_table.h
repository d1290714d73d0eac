#pragma once
// SPDX-License-Identifier: MIT
//
// TranscriptTable: the transcripts a search has found, as rows for a table view. Participants, days
// and the number of messages are filled in as the files are read, one after the other.

#include <QAbstractTableModel>
#include <QList>
#include <optional>

#include "app/search/file_walker.h"
#include "app/search/transcript_summary.h"
#include "toolkit/callback_guard.h"

namespace vell {

class ContactsStore;

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

    TranscriptTable(std::shared_ptr<FileReader> reader, ContactsStore& contacts,
                    QObject* parent = nullptr);
    ~TranscriptTable() override;

    void add(const QList<FileWalker::Found>& files);
    void clear();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    struct Row {
        FileWalker::Found file;
        QString folder;
        std::optional<TranscriptSummary> summary;
        QString participants;
        bool unreadable = false;
    };

    void summarise();
    void setSummary(int row, std::optional<TranscriptSummary> summary);
    void updateCommonFolder(const QString& folder);
    void updateNames();
    [[nodiscard]] QString participants(const TranscriptSummary& summary) const;
    [[nodiscard]] QString shownFolder(const Row& row) const;
    [[nodiscard]] QVariant shown(const Row& row, int column) const;
    [[nodiscard]] static QVariant sortKey(const Row& row, int column);

    std::shared_ptr<FileReader> reader_;
    ContactsStore& contacts_;
    QList<Row> rows_;
    QString commonFolder_;  // of all rows, as a path that ends in a slash
    int nextSummary_ = 0;
    bool summarising_ = false;
    /// Replaced by clear(), so that a summary in progress is dropped.
    std::shared_ptr<CallbackGuard> callbacks_;
};

}  // namespace vell
