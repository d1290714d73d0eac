#pragma once
// SPDX-License-Identifier: MIT
//
// LibrarySearch: finds messages in the library's database. Costs what is taken from it: the first
// results of a word that is everywhere are there at once.

#include <QHash>
#include <set>

#include "library/library_store.h"
#include "library/query.h"
#include "library/search_hit.h"

namespace vell {

class LibrarySearch {
  public:
    /// Borrows the store. The scope stays as it is.
    LibrarySearch(LibraryStore& store, SearchScope scope);

    /// Throws DatabaseError.
    void run(const Query& query, const TakeHit& take);
    [[nodiscard]] qint64 count(const Query& query);

  private:
    struct Row {
        qint64 number;
        qint64 file;
        SearchHit hit;
    };
    using Numbers = std::set<qint64>;

    Database& database_;
    const SearchScope scope_;
    Statement path_;
    Statement person_;
    QHash<qint64, QByteArray> paths_;
    QHash<qint64, TesselUserID> people_;

    [[nodiscard]] Numbers peopleNamed(const QString& typed);
    [[nodiscard]] bool isAllIn(const std::string& folder);
    [[nodiscard]] Numbers filesInFolders();
    [[nodiscard]] std::optional<Numbers> wantedFiles(const Query& query);
    [[nodiscard]] QByteArray conditions(const Query& query);
    [[nodiscard]] Statement prepared(const QByteArray& columns, const Query& query,
                                     const QByteArray& ending);
    bool runNewestFirst(const Query& query, std::set<qint64>* known, const TakeHit& take);
    bool hand(std::vector<Row>& day, const TakeHit& take);
    void addContext(Row& row);
    [[nodiscard]] Row rowAt(const Statement& rows);
    [[nodiscard]] FoundMessage messageAt(const Statement& rows);
    [[nodiscard]] QByteArray pathOf(qint64 file);
    [[nodiscard]] TesselUserID personAt(qint64 number);
};

}  // namespace vell
