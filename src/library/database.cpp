// SPDX-License-Identifier: MIT
#include "library/database.h"

#include <sqlite3.h>

#include <limits>
#include <utility>

namespace vell {
namespace {

constexpr int lockTimeout = 2000;         // milliseconds
constexpr int operationsPerCheck = 2000;  // of the virtual machine, some hundred microseconds

DatabaseError::Kind kindOf(int result) {
    switch (result & 0xff) {
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        // A statement of ours that the schema refuses: somebody has changed it.
        case SQLITE_ERROR:
            return DatabaseError::Kind::damaged;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return DatabaseError::Kind::locked;
        case SQLITE_INTERRUPT:
            return DatabaseError::Kind::interrupted;
        default:
            return DatabaseError::Kind::other;
    }
}

/// Before SQLite is first used: keeping statistics of its memory takes a lock for each allocation.
void configureOnce() {
    [[maybe_unused]] static const int result = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

void check(sqlite3* database, int result) {
    if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE) return;
    throw DatabaseError(kindOf(result), database ? sqlite3_errmsg(database) : "out of memory");
}

}  // namespace

void Statement::Finalize::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

void Statement::check(int result) const {
    vell::check(sqlite3_db_handle(statement_.get()), result);
}

void Statement::bind(int parameter, qint64 value) {
    check(sqlite3_bind_int64(statement_.get(), parameter, value));
}

void Statement::bind(int parameter, double value) {
    check(sqlite3_bind_double(statement_.get(), parameter, value));
}

void Statement::bind(int parameter, QByteArrayView bytes) {
    check(sqlite3_bind_blob64(statement_.get(), parameter, bytes.isEmpty() ? "" : bytes.data(),
                              static_cast<sqlite3_uint64>(bytes.size()), SQLITE_STATIC));
}

void Statement::bindText(int parameter, QByteArrayView utf8) {
    check(sqlite3_bind_text64(statement_.get(), parameter, utf8.isEmpty() ? "" : utf8.data(),
                              static_cast<sqlite3_uint64>(utf8.size()), SQLITE_STATIC,
                              SQLITE_UTF8));
}

void Statement::bindNull(int parameter) {
    check(sqlite3_bind_null(statement_.get(), parameter));
}

bool Statement::step() {
    const int result = sqlite3_step(statement_.get());
    if (result == SQLITE_ROW) return true;
    sqlite3* const database = sqlite3_db_handle(statement_.get());
    if (result != SQLITE_DONE) {
        const DatabaseError error(kindOf(result), sqlite3_errmsg(database));
        sqlite3_reset(statement_.get());
        throw error;
    }
    sqlite3_reset(statement_.get());
    return false;
}

qint64 Statement::run() {
    const qint64 value = step() ? integer(0) : 0;
    reset();
    return value;
}

void Statement::reset() {
    sqlite3_reset(statement_.get());
}

qint64 Statement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

QByteArray Statement::bytes(int column) const {
    const void* const data = sqlite3_column_blob(statement_.get(), column);
    return {static_cast<const char*>(data), sqlite3_column_bytes(statement_.get(), column)};
}

QString Statement::text(int column) const {
    return QString::fromUtf8(bytes(column));
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

foundation::Date Statement::date(int column) const {
    return {isNull(column) ? std::numeric_limits<double>::quiet_NaN() : real(column)};
}

void Database::Close::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

Database::Database(const QByteArray& path, Missing missing) {
    configureOnce();
    sqlite3* opened = nullptr;
    const int create = missing == Missing::create ? SQLITE_OPEN_CREATE : 0;
    const int result = sqlite3_open_v2(
        path.constData(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | create, nullptr);
    database_.reset(opened);
    check(opened, result);
    sqlite3_busy_timeout(opened, lockTimeout);
}

Statement Database::prepare(const QByteArray& sql) {
    sqlite3_stmt* statement = nullptr;
    check(database_.get(), sqlite3_prepare_v2(database_.get(), sql.constData(),
                                              static_cast<int>(sql.size()), &statement, nullptr));
    return Statement(statement);
}

void Database::run(const char* sql) {
    check(database_.get(), sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr));
}

qint64 Database::lastRow() const {
    return sqlite3_last_insert_rowid(database_.get());
}

void Database::keepLogWhenClosed() {
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

void Database::interruptWhen(std::function<bool()> isCancelled) {
    isCancelled_ = std::move(isCancelled);
    const auto check = [](void* database) {
        return static_cast<int>(static_cast<Database*>(database)->isCancelled_());
    };
    sqlite3_progress_handler(database_.get(), isCancelled_ ? operationsPerCheck : 0, check, this);
}

Transaction::Transaction(Database& database, Kind kind) : database_(database) {
    database_.run(kind == Kind::writing ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction() {
    if (!isOpen_) return;
    database_.interruptWhen({});
    try {
        database_.run("ROLLBACK");
    } catch (const DatabaseError&) {
        // SQLite has rolled back by itself, as after a full disk.
    }
}

void Transaction::commit() {
    database_.run("COMMIT");
    isOpen_ = false;
}

}  // namespace vell
