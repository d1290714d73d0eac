// SPDX-License-Identifier: MIT
#include "library/library_search.h"

#include <algorithm>
#include <cmath>

#include "library/changes.h"

namespace vell {
namespace {

const QByteArray messageColumns = "m.id, m.file, m.sequence, m.date, m.sender, m.kinds, m.text";

QByteArray listed(const std::set<qint64>& numbers) {
    QByteArray list;
    for (const qint64 number : numbers)
        list += (list.isEmpty() ? "" : ",") + QByteArray::number(number);
    return '(' + list + ')';
}

/// For the words' index. Tokens hold no quotation marks.
QByteArray matchExpression(const Query& query) {
    QByteArray expression;
    for (const Query::Phrase& phrase : query.phrases) {
        if (!expression.isEmpty()) expression += " AND ";
        expression += '"';
        for (const QString& token : phrase.tokens)
            expression += token.toUtf8() + ' ';
        expression += phrase.isPrefix ? "\" *" : "\"";
    }
    return expression;
}

}  // namespace

LibrarySearch::LibrarySearch(LibraryStore& store, SearchScope scope)
    : database_(store.database()),
      scope_(std::move(scope)),
      path_(database_.prepare("SELECT path FROM files WHERE id = ?")),
      person_(database_.prepare("SELECT service, account FROM people WHERE id = ?")) {}

LibrarySearch::Numbers LibrarySearch::peopleNamed(const QString& typed) {
    Numbers numbers;
    Statement people = database_.prepare("SELECT id, service, account FROM people");
    while (people.step()) {
        const TesselUserID person{{people.text(1)}, people.text(2)};
        if (isNamed(person, typed, scope_)) numbers.insert(people.integer(0));
    }
    return numbers;
}

/// Quick, and true where it matters: of the one folder that somebody always searches.
bool LibrarySearch::isAllIn(const std::string& folder) {
    Statement others =
        database_.prepare("SELECT EXISTS (SELECT 1 FROM files WHERE path < ?1 OR path >= ?2)");
    const QByteArray first = QByteArray::fromStdString(folder) + '/';
    const QByteArray behind = QByteArray::fromStdString(folder) + char('/' + 1);
    others.bind(1, first);
    others.bind(2, behind);
    return others.run() == 0;
}

LibrarySearch::Numbers LibrarySearch::filesInFolders() {
    Numbers numbers;
    Statement files = database_.prepare("SELECT id, path FROM files ORDER BY id");
    while (files.step()) {
        const QByteArray path = files.bytes(1);
        if (std::any_of(scope_.folders.begin(), scope_.folders.end(),
                        [&path](const std::string& folder) { return isWithin(path, folder); }))
            numbers.insert(numbers.end(), files.integer(0));
    }
    return numbers;
}

/// Nothing when all files are wanted.
std::optional<LibrarySearch::Numbers> LibrarySearch::wantedFiles(const Query& query) {
    const bool isAll = std::any_of(scope_.folders.begin(), scope_.folders.end(),
                                   [this](const std::string& folder) { return isAllIn(folder); });
    if (isAll && query.with.isEmpty()) return std::nullopt;
    Numbers wanted = filesInFolders();
    for (const QString& typed : query.with) {
        Numbers together;
        Statement with = database_.prepare(
            "SELECT DISTINCT file FROM participants WHERE person IN " + listed(peopleNamed(typed)));
        while (with.step()) {
            if (wanted.contains(with.integer(0))) together.insert(with.integer(0));
        }
        wanted = std::move(together);
    }
    return wanted;
}

/// All but the words. The numbers of messages tell the days.
QByteArray LibrarySearch::conditions(const Query& query) {
    QByteArray sql;
    const QByteArray number = query.phrases.empty() ? "m.id" : "words.rowid";
    if (std::isfinite(query.begin)) {
        const qint64 first = LibraryStore::firstNumberOnDayOf(query.begin);
        sql += " AND " + number + " >= " + QByteArray::number(first) +
               " AND m.date >= " + QByteArray::number(query.begin, 'f', 0);
    }
    if (std::isfinite(query.end)) {
        const qint64 behind =
            LibraryStore::firstNumberOnDayOf(query.end) + LibraryStore::mostMessagesOnDay;
        sql += " AND " + number + " < " + QByteArray::number(behind) + " AND m.date < " +
               QByteArray::number(query.end, 'f', 0);
    }
    if (!query.from.isEmpty()) {
        Numbers senders;
        for (const QString& typed : query.from)
            senders.merge(peopleNamed(typed));
        sql += " AND m.sender IN " + listed(senders);
    }
    if (const auto files = wantedFiles(query)) sql += " AND m.file IN " + listed(*files);
    if (query.has != 0) {
        const QByteArray kinds = QByteArray::number(query.has);
        sql += " AND m.kinds & " + kinds + " = " + kinds;
    }
    return sql;
}

Statement LibrarySearch::prepared(const QByteArray& columns, const Query& query,
                                  const QByteArray& ending) {
    const QByteArray more = conditions(query);
    if (query.phrases.empty()) {
        return database_.prepare("SELECT " + columns + " FROM messages m WHERE true" + more +
                                 ending);
    }
    // The index alone knows, unless something else is asked for.
    const QByteArray join = columns.contains("m.") || more.contains("m.")
                                ? " CROSS JOIN messages m ON m.id = words.rowid"
                                : "";
    return database_.prepare("SELECT " + columns + " FROM words" + join + " WHERE words MATCH '" +
                             matchExpression(query) + '\'' + more + ending);
}

qint64 LibrarySearch::count(const Query& query) {
    return prepared("count(*)", query, {}).run();
}

void LibrarySearch::run(const Query& query, const TakeHit& take) {
    if (!scope_.bestFirst) {
        runNewestFirst(query, nullptr, take);
        return;
    }
    std::set<qint64> known;
    for (int rank = 0; rank <= Query::worstRank; ++rank) {
        if (!runNewestFirst(query.narrowedTo(rank), &known, take)) return;
    }
}

/// Rows come day by day; within a day they are sorted here.
bool LibrarySearch::runNewestFirst(const Query& query, std::set<qint64>* known,
                                   const TakeHit& take) {
    const QByteArray order = query.phrases.empty() ? "m.id" : "words.rowid";
    Statement rows = prepared(messageColumns, query, " ORDER BY " + order + " DESC");
    std::vector<Row> day;
    while (rows.step()) {
        const qint64 number = rows.integer(0);
        if (known && !known->insert(number).second) continue;
        const auto isSameDay = [](qint64 a, qint64 b) {
            return a >> LibraryStore::numberBits == b >> LibraryStore::numberBits;
        };
        if (!day.empty() && !isSameDay(day.back().number, number) && !hand(day, take)) return false;
        day.push_back(rowAt(rows));
    }
    return hand(day, take);
}

bool LibrarySearch::hand(std::vector<Row>& day, const TakeHit& take) {
    std::sort(day.begin(), day.end(),
              [](const Row& a, const Row& b) { return isNewer(a.hit, b.hit); });
    for (Row& row : day) {
        addContext(row);
        if (!take(row.hit)) return false;
    }
    day.clear();
    return true;
}

void LibrarySearch::addContext(Row& row) {
    if (scope_.context <= 0) return;
    std::vector<std::pair<qint64, qint64>> sequences;  // of the file, and their numbers
    Statement stretches = database_.prepare(
        "SELECT m.sequence, m.id FROM stretches s CROSS JOIN messages m "
        "ON m.id >= s.first AND m.id < s.first + s.count WHERE s.file = ? ORDER BY m.sequence");
    stretches.bind(1, row.file);
    while (stretches.step())
        sequences.emplace_back(stretches.integer(0), stretches.integer(1));
    const auto at = std::lower_bound(sequences.begin(), sequences.end(),
                                     std::pair(row.hit.message.sequence, row.number));
    const auto first = at - std::min<qsizetype>(scope_.context, at - sequences.begin());
    const auto last = at + std::min<qsizetype>(scope_.context, sequences.end() - at - 1);
    Statement message =
        database_.prepare("SELECT " + messageColumns + " FROM messages m WHERE m.id = ?");
    for (auto each = first; each <= last; ++each) {
        if (each == at) continue;
        message.bind(1, each->second);
        if (message.step())
            (each < at ? row.hit.before : row.hit.after).push_back(messageAt(message));
        message.reset();
    }
}

LibrarySearch::Row LibrarySearch::rowAt(const Statement& rows) {
    const qint64 file = rows.integer(1);
    return {rows.integer(0), file, {pathOf(file), messageAt(rows), {}, {}}};
}

FoundMessage LibrarySearch::messageAt(const Statement& rows) {
    FoundMessage message{rows.integer(2), rows.date(3), std::nullopt,
                         static_cast<quint8>(rows.integer(5)), rows.text(6)};
    if (!rows.isNull(4)) message.sender = personAt(rows.integer(4));
    return message;
}

QByteArray LibrarySearch::pathOf(qint64 file) {
    QByteArray& path = paths_[file];
    if (path.isEmpty()) {
        path_.bind(1, file);
        if (path_.step()) path = path_.bytes(0);
        path_.reset();
    }
    return path;
}

TesselUserID LibrarySearch::personAt(qint64 number) {
    const auto known = people_.constFind(number);
    if (known != people_.cend()) return *known;
    TesselUserID person;
    person_.bind(1, number);
    if (person_.step()) person = {{person_.text(0)}, person_.text(1)};
    person_.reset();
    return *people_.insert(number, person);
}

}  // namespace vell
