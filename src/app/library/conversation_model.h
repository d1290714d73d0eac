#pragma once
// SPDX-License-Identifier: MIT
//
// ConversationModel: the conversations with somebody below the headings of their years and months,
// the latest first. How they begin is read from the database when they are seen.

#include <QAbstractItemModel>
#include <QDate>
#include <QHash>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "app/library/library_thread.h"
#include "library/library_people.h"

namespace vell {

class ConversationModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    explicit ConversationModel(const QByteArray& database, QObject* parent = nullptr);

    /// Those with a partner, or PeopleModel::everybody.
    void show(std::shared_ptr<const LibraryPeople> people, int partner);

    /// Null for headings.
    [[nodiscard]] const LibraryConversation* conversation(const QModelIndex& index) const;
    [[nodiscard]] bool isYear(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOf(const QByteArray& path) const;
    [[nodiscard]] int count() const { return static_cast<int>(shown_.size()); }

    /// What a row says: the first line, its end, the second line, its end.
    struct Texts {
        QString first;
        QString firstEnd;
        QString second;
        QString secondEnd;
    };
    [[nodiscard]] Texts texts(const QModelIndex& index) const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& = {}) const override { return 1; }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

  Q_SIGNALS:
    /// How some of the conversations begin is known now.
    void wordsRead();

  private:
    /// Rows in `shown_`, or of months in `months_`.
    struct Heading {
        QDate begin;  ///< the first day; invalid for conversations without a date
        int first = 0;
        int count = 0;
        int year = 0;  ///< of a month
    };

    /// Of a file that may be replaced by another one: its path and number of messages.
    using WordsKey = std::pair<QByteArray, qint64>;

    void arrange();
    [[nodiscard]] QString firstWordsOf(const LibraryConversation& conversation) const;
    void readWords();
    void takeWords(const QHash<WordsKey, QString>& words);
    [[nodiscard]] static QString title(const Heading& heading, bool isYear);
    [[nodiscard]] const Heading* heading(const QModelIndex& index) const;

    std::shared_ptr<const LibraryPeople> people_;
    int partner_;
    std::vector<int> shown_;  // indexes of conversations
    std::vector<Heading> years_;
    std::vector<Heading> months_;
    QHash<WordsKey, QString> words_;
    mutable std::vector<const LibraryConversation*> wanted_;  // of people_
    mutable QTimer wordsTimer_;
    LibraryThread reading_;
};

}  // namespace vell
