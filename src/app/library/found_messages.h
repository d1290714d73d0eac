#pragma once
// SPDX-License-Identifier: MIT
//
// FoundMessages: the messages that a query has found in the library, as they come. The search runs
// on a thread; a new query interrupts the one before.

#include <QAbstractListModel>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "app/library/library_thread.h"
#include "library/query.h"
#include "library/search_hit.h"

namespace vell {

class ContactsStore;
class Library;

class FoundMessages final : public QAbstractListModel {
    Q_OBJECT

  public:
    /// Further ones are counted, not listed.
    static constexpr int mostListed = 5000;

    struct Row {
        QByteArray path;
        qint64 sequence = 0;
        foundation::Date date;
        std::optional<TesselUserID> sender;
        QString line;                        ///< of the text, around the first match
        std::vector<TextStretch> stretches;  ///< of the line
    };

    FoundMessages(Library& library, const ContactsStore& contacts, QObject* parent = nullptr);

    /// Throws QueryError; then nothing is searched.
    void search(const QString& text, bool bestFirst);
    void clear();

    [[nodiscard]] const Row& row(const QModelIndex& index) const {
        return rows_[static_cast<std::size_t>(index.row())];
    }
    /// All that was found; unknown while it is counted.
    [[nodiscard]] std::optional<qint64> count() const { return count_; }
    [[nodiscard]] bool isSearching() const { return isSearching_; }
    /// What the query looks for in texts.
    [[nodiscard]] const QStringList& words() const { return words_; }
    /// Who wrote it, and to whom if that isn't clear from it.
    [[nodiscard]] QString origin(const Row& row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

  Q_SIGNALS:
    /// count() or isSearching().
    void stateChanged();

  private:
    struct Search;
    void append(std::vector<Row> rows);
    void takeCount(qint64 count);

    Library& library_;
    const ContactsStore& contacts_;
    QStringList words_;
    std::vector<Row> rows_;
    bool isStale_ = false;  // the rows are those of the query before
    std::optional<qint64> count_;
    bool isSearching_ = false;
    LibraryThread thread_;
    quint64 newest_ = 0;
};

}  // namespace vell
