// SPDX-License-Identifier: MIT
#include "library/library_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <cmath>
#include <filesystem>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 applicationId = 0x56656c6c;  // "Vell"
constexpr qint64 schemaVersion = 3;
constexpr double secondsPerDay = 86400;
constexpr qint64 millisecondsPerDay = 86'400'000;
constexpr double mostDays = 4'000'000;  // beyond the year 9999

constexpr const char* settings = R"(
    PRAGMA page_size = 8192;
    PRAGMA journal_mode = WAL;
    PRAGMA synchronous = NORMAL;
    PRAGMA wal_autocheckpoint = 0;
    PRAGMA cache_size = -32768;
    PRAGMA temp_store = MEMORY;
)";
constexpr const char* settingsToRead = R"(
    PRAGMA query_only = ON;
    PRAGMA cache_size = -32768;
    PRAGMA temp_store = MEMORY;
)";

// A message's date is kept as milliseconds of the day that its number tells. Segments of the words'
// index are merged 16 at a time and not sooner: that is the least work for what a search gains.
// The ASCII tokenizer divides what TextTokenizer writes at its blanks and nowhere else.
constexpr const char* schema = R"(
    CREATE TABLE files (id INTEGER PRIMARY KEY, path BLOB NOT NULL UNIQUE, size INTEGER NOT NULL,
        modified INTEGER NOT NULL, inode INTEGER NOT NULL, hash BLOB NOT NULL, reason TEXT,
        owner INTEGER, messages INTEGER NOT NULL, firstDate REAL, lastDate REAL);
    CREATE TABLE people (id INTEGER PRIMARY KEY, service TEXT NOT NULL, account TEXT NOT NULL,
        UNIQUE (service, account));
    CREATE TABLE participants (file INTEGER, person INTEGER, PRIMARY KEY (file, person))
        WITHOUT ROWID;
    CREATE TABLE stretches (file INTEGER, first INTEGER, count INTEGER NOT NULL,
        PRIMARY KEY (file, first)) WITHOUT ROWID;
    CREATE TABLE messages (id INTEGER PRIMARY KEY, file INTEGER NOT NULL,
        sequence INTEGER NOT NULL, time, sender INTEGER, kinds INTEGER NOT NULL,
        text TEXT NOT NULL,
        date REAL AS (CASE typeof(time) WHEN 'integer' THEN ((id >> 20) * 86400000 + time) / 1000.0
            ELSE time END));
    CREATE VIRTUAL TABLE words USING fts5(text, content = '', columnsize = 0, tokenize = 'ascii');
    INSERT INTO words (words, rank) VALUES ('hashsize', 16777216);
    INSERT INTO words (words, rank) VALUES ('pgsz', 8100);
    INSERT INTO words (words, rank) VALUES ('automerge', 0);
)";

bool makePrivateFolder(const QByteArray& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder.toStdString(), error);
    std::filesystem::permissions(folder.toStdString(), std::filesystem::perms::owner_all, error);
    return !error;
}

}  // namespace

QByteArray LibraryStore::defaultPath() {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return QFile::encodeName(cache + u"/vell/library/messages.sqlite"_s);
}

qint64 LibraryStore::firstNumberOnDayOf(double secondsSinceReferenceDate) {
    double day = std::floor(secondsSinceReferenceDate / secondsPerDay);
    if (std::isnan(day)) day = -mostDays;
    return static_cast<qint64>(std::clamp(day, -mostDays, mostDays)) * mostMessagesOnDay;
}

std::optional<qint64> LibraryStore::timeOfDay(foundation::Date date, qint64 number) {
    const auto milliseconds = date.millisecondsSinceEpoch();
    if (!milliseconds) return std::nullopt;
    return *milliseconds - *foundation::Date{}.millisecondsSinceEpoch() -
           (number >> numberBits) * millisecondsPerDay;
}

LibraryStore::LibraryStore(const QByteArray& path, Access access) : path_(path) {
    try {
        access == Access::read ? openToRead() : open();
    } catch (const DatabaseError& error) {
        if (error.kind() == DatabaseError::Kind::damaged && access == Access::write) {
            wasDamaged_ = true;
            startAnew();
        } else if (error.kind() == DatabaseError::Kind::locked) {
            throw StoreRefusal{u"another program is using it"_s};
        } else {
            throw StoreRefusal{QString::fromUtf8(error.what())};
        }
    }
}

void LibraryStore::open() {
    if (!makePrivateFolder(path_.first(path_.lastIndexOf('/'))))
        throw StoreRefusal{u"its folder can't be made"_s};
    // Only ever a new file: closing one that this process has open would release its locks.
    const int created = ::open(path_.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (created >= 0) ::close(created);
    database_ = std::make_unique<Database>(path_);
    prepareSchema();
}

void LibraryStore::openToRead() {
    database_ = std::make_unique<Database>(path_, Database::Missing::refuse);
    if (checkedVersion(false) < schemaVersion) throw StoreRefusal{u"it is from an older version"_s};
    database_->run(settingsToRead);
}

bool LibraryStore::isEmpty() {
    return database_->value("SELECT count(*) FROM sqlite_schema") == 0;
}

/// The version of the schema, of a database that is ours.
qint64 LibraryStore::checkedVersion(bool mayBeEmpty) {
    const qint64 application = database_->value("PRAGMA application_id");
    const qint64 version = database_->value("PRAGMA user_version");
    if (application != applicationId && !(mayBeEmpty && application == 0))
        throw StoreRefusal{u"it belongs to another program"_s};
    if (version > schemaVersion) throw StoreRefusal{u"it is from a newer version"_s};
    return version;
}

void LibraryStore::prepareSchema() {
    const bool wasEmpty = isEmpty();
    if (checkedVersion(wasEmpty) < schemaVersion && !wasEmpty) return startAnew();
    database_->run(settings);
    // Also shows whether it can be written.
    Transaction transaction(*database_);
    if (isEmpty()) {
        database_->run(schema);
        database_->run(
            ("PRAGMA application_id = " + QByteArray::number(applicationId)).constData());
        database_->run(("PRAGMA user_version = " + QByteArray::number(schemaVersion)).constData());
    }
    transaction.commit();
}

void LibraryStore::startAnew() {
    database_.reset();
    removeFiles();
    try {
        open();
    } catch (const DatabaseError& error) {
        throw StoreRefusal{QString::fromUtf8(error.what())};
    }
}

void LibraryStore::removeFiles() const {
    for (const char* ending : {"", "-wal", "-shm", "-journal"})
        ::unlink((path_ + ending).constData());
}

std::vector<LibraryStore::KnownFile> LibraryStore::files() {
    std::vector<KnownFile> result;
    Statement rows =
        database_->prepare("SELECT id, path, size, modified, inode, hash FROM files ORDER BY path");
    while (rows.step()) {
        result.push_back({rows.integer(0),
                          {rows.bytes(1), rows.integer(2), rows.integer(3),
                           static_cast<quint64>(rows.integer(4))},
                          rows.bytes(5)});
    }
    return result;
}

}  // namespace vell
