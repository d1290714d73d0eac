#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryStore: the database that searches over many transcripts use. It lies in the user's cache
// folder, readable by its owner only, and holds nothing that can't be made again from the files.
// One thread at a time. Several threads and programs may each have it open: an indexer writes,
// any number of others search beside it and see each of its transactions whole.
//
// A message's number says on which day it was sent, so that the words' index, which is in the order
// of its numbers, finds the newest messages first, and those of some days at once.

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "foundation/date.h"
#include "library/database.h"
#include "library/folder_walk.h"

namespace vell {

/// The database can't be used, and is left as it is; for people.
struct StoreRefusal {
    QString reason;
};

class LibraryStore {
  public:
    /// The user's own.
    [[nodiscard]] static QByteArray defaultPath();

    /// To write: opens the database or makes an empty one. What is damaged or from an older version
    /// is made anew. Throws StoreRefusal when it belongs to something else or can't be written.
    /// To read: waits for no writer and changes nothing. Throws StoreRefusal when there is none
    /// that can be read.
    enum class Access { write, read };
    explicit LibraryStore(const QByteArray& path, Access access = Access::write);

    /// Whether a damaged database was replaced.
    [[nodiscard]] bool wasDamaged() const { return wasDamaged_; }
    [[nodiscard]] Database& database() { return *database_; }
    [[nodiscard]] const QByteArray& path() const { return path_; }
    /// Throws away the database and begins with an empty one. Stores that are open to read keep
    /// the old one until they are opened again.
    void startAnew();

    struct KnownFile {
        qint64 id = 0;
        FoundFile file;
        QByteArray hash;
    };
    /// All of them, by path.
    [[nodiscard]] std::vector<KnownFile> files();

    /// The first number of messages that were sent on the day of this date, and later.
    [[nodiscard]] static qint64 firstNumberOnDayOf(double secondsSinceReferenceDate);
    /// Milliseconds of the date since its day began, in UTC; nothing for a date outside the
    /// calendar. The number is that of the message.
    [[nodiscard]] static std::optional<qint64> timeOfDay(foundation::Date date, qint64 number);
    static constexpr int numberBits = 20;
    static constexpr qint64 mostMessagesOnDay = qint64{1} << numberBits;

  private:
    const QByteArray path_;
    std::unique_ptr<Database> database_;
    bool wasDamaged_ = false;

    void open();
    void openToRead();
    [[nodiscard]] bool isEmpty();
    [[nodiscard]] qint64 checkedVersion(bool mayBeEmpty);
    void prepareSchema();
    void removeFiles() const;
};

}  // namespace vell
