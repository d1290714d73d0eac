#pragma once
// SPDX-License-Identifier: MIT
//
// Database and Statement: SQLite's C interface, closed and finalized when they go, with failures
// thrown as DatabaseError. One thread at a time.
//
//     Statement people = database.prepare("SELECT account FROM people WHERE id = ?");
//     people.bind(1, id);
//     while (people.step()) use(people.text(0));

#include <QByteArray>
#include <QString>
#include <exception>
#include <functional>
#include <memory>

#include "foundation/date.h"

struct sqlite3;
struct sqlite3_stmt;

namespace vell {

class DatabaseError : public std::exception {
  public:
    enum class Kind { damaged, locked, interrupted, other };

    DatabaseError(Kind kind, QByteArray reason) : kind_(kind), reason_(std::move(reason)) {}
    [[nodiscard]] Kind kind() const { return kind_; }
    /// In plain words.
    [[nodiscard]] const char* what() const noexcept override { return reason_.constData(); }

  private:
    Kind kind_;
    QByteArray reason_;
};

class Statement {
  public:
    /// Parameters are numbered from 1. The bytes must stay until the next step() or reset().
    void bind(int parameter, qint64 value);
    void bind(int parameter, double value);
    void bind(int parameter, QByteArrayView bytes);
    /// As text.
    void bindText(int parameter, QByteArrayView utf8);
    void bindNull(int parameter);

    /// Whether there is a further row; after the last one it can be bound and stepped anew.
    bool step();
    /// Steps to the end and returns the first column of the first row, or 0.
    qint64 run();
    void reset();

    /// Columns are numbered from 0.
    [[nodiscard]] qint64 integer(int column) const;
    [[nodiscard]] double real(int column) const;
    /// None (not a number) where the column is null.
    [[nodiscard]] foundation::Date date(int column) const;
    [[nodiscard]] QByteArray bytes(int column) const;
    [[nodiscard]] QString text(int column) const;
    [[nodiscard]] bool isNull(int column) const;

  private:
    friend class Database;
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    explicit Statement(sqlite3_stmt* statement) : statement_(statement) {}

    std::unique_ptr<sqlite3_stmt, Finalize> statement_;

    void check(int result) const;
};

class Database {
  public:
    /// Opens the file, which is created if it may be.
    enum class Missing { create, refuse };
    explicit Database(const QByteArray& path, Missing missing = Missing::create);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    [[nodiscard]] Statement prepare(const QByteArray& sql);
    /// Runs statements without parameters.
    void run(const char* sql);
    /// The value of a query without parameters.
    [[nodiscard]] qint64 value(const QByteArray& sql) { return prepare(sql).run(); }
    [[nodiscard]] qint64 lastRow() const;
    /// Closing it takes no time then. Whoever has it open next moves the log into the file.
    void keepLogWhenClosed();
    /// Asks now and then while a statement runs; it fails as interrupted once this returns true.
    void interruptWhen(std::function<bool()> isCancelled);

  private:
    struct Close {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Close> database_;
    std::function<bool()> isCancelled_;
};

/// Rolls back unless it was committed.
class Transaction {
  public:
    enum class Kind { reading, writing };
    explicit Transaction(Database& database, Kind kind = Kind::writing);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

  private:
    Database& database_;
    bool isOpen_ = true;
};

}  // namespace vell
