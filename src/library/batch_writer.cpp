// SPDX-License-Identifier: MIT
#include "library/batch_writer.h"

#include <QStringEncoder>
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace vell {
namespace {

// Messages in a transaction. The first ones are small, so that something can be found soon; the
// others have some 60 MB in memory and a second or two of writing.
constexpr std::size_t firstBatch = 25'000;
constexpr std::size_t largestBatch = 200'000;

struct OldMessage {
    qint64 number;
    QByteArray words;
};

}  // namespace

void PackedTexts::reserve(std::size_t count, qsizetype bytes) {
    bytes_.reserve(bytes);
    ends_.reserve(count);
}

void PackedTexts::append(QStringView text) {
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const qsizetype begin = bytes_.size();
    bytes_.resize(begin + encoder.requiredSpace(text.size()));
    const char* const end = encoder.appendToBuffer(bytes_.data() + begin, text);
    bytes_.truncate(end - bytes_.constData());
    ends_.push_back(bytes_.size());
}

QByteArrayView PackedTexts::operator[](std::size_t index) const {
    const qsizetype begin = index == 0 ? 0 : ends_[index - 1];
    return QByteArrayView(bytes_).sliced(begin, ends_[index] - begin);
}

std::size_t PackedTexts::bytes() const {
    return static_cast<std::size_t>(bytes_.capacity()) + ends_.capacity() * sizeof(ends_[0]);
}

std::size_t PreparedFile::bytes() const {
    return sizeof(*this) + texts.bytes() + words.bytes() +
           reading.conversation.messages.capacity() * sizeof(LibraryMessage);
}

PreparedFile prepared(FileReading reading, TextTokenizer& tokenizer) {
    PreparedFile file;
    auto& messages = reading.conversation.messages;
    qsizetype units = 0;
    for (const LibraryMessage& message : messages)
        units += message.text.size();
    file.texts.reserve(messages.size(), units);
    file.words.reserve(messages.size(), units);
    for (LibraryMessage& message : messages) {
        tokenizer.read(message.text);
        file.words.append(tokenizer.folded());
        file.texts.append(std::exchange(message.text, {}));
    }
    file.reading = std::move(reading);
    return file;
}

BatchWriter::BatchWriter(LibraryStore& store, std::function<bool()> isCancelled)
    : database_(store.database()),
      insertFile_(database_.prepare(
          "INSERT INTO files (path, size, modified, inode, hash, reason, owner, messages, "
          "firstDate, lastDate) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")),
      insertParticipant_(database_.prepare("INSERT INTO participants VALUES (?, ?)")),
      insertPerson_(
          database_.prepare("INSERT OR IGNORE INTO people (service, account) VALUES (?, ?)")),
      findPerson_(database_.prepare("SELECT id FROM people WHERE service = ? AND account = ?")),
      insertStretch_(database_.prepare("INSERT INTO stretches VALUES (?, ?, ?)")),
      lastOfDay_(database_.prepare("SELECT max(id) FROM messages WHERE id >= ?1 AND id < ?1 + ?2")),
      insertMessage_(
          database_.prepare("INSERT INTO messages (id, file, sequence, time, sender, kinds, text) "
                            "VALUES (?, ?, ?, ?, ?, ?, ?)")),
      insertWords_(database_.prepare("INSERT INTO words (rowid, text) VALUES (?, ?)")),
      fullBatch_(firstBatch) {
    database_.interruptWhen(std::move(isCancelled));
}

BatchWriter::~BatchWriter() {
    database_.interruptWhen({});
}

void BatchWriter::add(PreparedFile file) {
    messageCount_ += file.reading.conversation.messages.size();
    added_.push_back(std::move(file));
}

void BatchWriter::remove(qint64 file) {
    removed_.push_back(file);
}

void BatchWriter::update(qint64 file, const FoundFile& now) {
    updated_.emplace_back(file, now);
}

bool BatchWriter::isFull() const {
    return messageCount_ >= fullBatch_;
}

bool BatchWriter::flush() {
    if (added_.empty() && removed_.empty() && updated_.empty()) return false;
    people_.clear();
    nextNumbers_.clear();
    Transaction transaction(database_);
    removeAll();
    updateAll();
    addAll();
    if (!removed_.empty())
        database_.run("DELETE FROM people WHERE id NOT IN (SELECT person FROM participants)");
    transaction.commit();
    added_.clear();
    removed_.clear();
    updated_.clear();
    messageCount_ = 0;
    fullBatch_ = std::min(2 * fullBatch_, largestBatch);
    return true;
}

void BatchWriter::removeAll() {
    Statement stretches = database_.prepare("SELECT first, count FROM stretches WHERE file = ?");
    Statement messages =
        database_.prepare("SELECT id, text FROM messages WHERE id >= ?1 AND id < ?1 + ?2");
    TextTokenizer tokenizer;
    std::vector<OldMessage> old;
    for (const qint64 file : removed_) {
        stretches.bind(1, file);
        while (stretches.step()) {
            messages.bind(1, stretches.integer(0));
            messages.bind(2, stretches.integer(1));
            while (messages.step()) {
                tokenizer.read(messages.text(1));
                old.push_back({messages.integer(0), tokenizer.folded().toUtf8()});
            }
        }
    }
    std::sort(old.begin(), old.end(),
              [](const OldMessage& a, const OldMessage& b) { return a.number < b.number; });
    Statement forget =
        database_.prepare("INSERT INTO words (words, rowid, text) VALUES ('delete', ?, ?)");
    Statement remove = database_.prepare("DELETE FROM messages WHERE id = ?");
    for (const OldMessage& message : old) {
        forget.bind(1, message.number);
        forget.bindText(2, message.words);
        forget.run();
        remove.bind(1, message.number);
        remove.run();
    }
    for (const char* sql :
         {"DELETE FROM stretches WHERE file = ?", "DELETE FROM participants WHERE file = ?",
          "DELETE FROM files WHERE id = ?"}) {
        Statement statement = database_.prepare(sql);
        for (const qint64 file : removed_) {
            statement.bind(1, file);
            statement.run();
        }
    }
}

void BatchWriter::updateAll() {
    Statement update = database_.prepare(
        "UPDATE files SET path = ?2, size = ?3, modified = ?4, inode = ?5 WHERE id = ?1");
    for (const auto& [file, now] : updated_) {
        update.bind(1, file);
        update.bind(2, now.path);
        update.bind(3, now.size);
        update.bind(4, now.modified);
        update.bind(5, static_cast<qint64>(now.inode));
        update.run();
    }
}

void BatchWriter::addAll() {
    std::vector<Row> rows;
    rows.reserve(messageCount_);
    for (const PreparedFile& file : added_)
        addFile(file, rows);
    addRows(rows);
}

void BatchWriter::addFile(const PreparedFile& file, std::vector<Row>& rows) {
    const auto& messages = file.reading.conversation.messages;
    std::map<qint64, std::vector<std::size_t>> days;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        const double date = messages[i].date.secondsSinceReferenceDate;
        days[LibraryStore::firstNumberOnDayOf(date)].push_back(i);
    }
    const bool fits = std::all_of(days.begin(), days.end(), [this](const auto& day) {
        return nextNumber(day.first) + std::ssize(day.second) <=
               day.first + LibraryStore::mostMessagesOnDay;
    });
    if (!fits) {
        insertFile(file.reading, "more than a million messages are on one of its days");
        return;
    }
    const qint64 fileNumber = insertFile(file.reading, file.reading.reason.toUtf8());
    const std::vector<qint64> people = insertPeople(file.reading.conversation, fileNumber);
    // Messages of one day get numbers that follow each other, in the file's order.
    for (const auto& [day, indexes] : days) {
        qint64& next = nextNumber(day);
        insertStretch_.bind(1, fileNumber);
        insertStretch_.bind(2, next);
        insertStretch_.bind(3, static_cast<qint64>(indexes.size()));
        insertStretch_.run();
        for (const std::size_t i : indexes) {
            const int sender = messages[i].sender;
            rows.push_back({next++, fileNumber,
                            sender < 0 ? 0 : people[static_cast<std::size_t>(sender)], &file, i});
        }
    }
}

qint64 BatchWriter::insertFile(const FileReading& reading, const QByteArray& reason) {
    insertFile_.bind(1, reading.file.path);
    insertFile_.bind(2, reading.file.size);
    insertFile_.bind(3, reading.file.modified);
    insertFile_.bind(4, static_cast<qint64>(reading.file.inode));
    insertFile_.bind(5, reading.hash);
    reason.isEmpty() ? insertFile_.bindNull(6) : insertFile_.bindText(6, reason);
    bindSummary(reason.isEmpty() ? reading.conversation : Conversation());
    insertFile_.run();
    return database_.lastRow();
}

void BatchWriter::bindSummary(const Conversation& conversation) {
    double first = std::numeric_limits<double>::quiet_NaN();  // null in the database
    double last = first;
    for (const LibraryMessage& message : conversation.messages) {
        first = std::fmin(first, message.date.secondsSinceReferenceDate);
        last = std::fmax(last, message.date.secondsSinceReferenceDate);
    }
    const auto& people = conversation.people;
    people.empty() ? insertFile_.bindNull(7) : insertFile_.bind(7, personNumber(people.front()));
    insertFile_.bind(8, static_cast<qint64>(conversation.messages.size()));
    insertFile_.bind(9, first);
    insertFile_.bind(10, last);
}

std::vector<qint64> BatchWriter::insertPeople(const Conversation& conversation, qint64 file) {
    std::vector<qint64> numbers;
    for (const TesselUserID& person : conversation.people) {
        numbers.push_back(personNumber(person));
        insertParticipant_.bind(1, file);
        insertParticipant_.bind(2, numbers.back());
        insertParticipant_.run();
    }
    return numbers;
}

void BatchWriter::addRows(std::vector<Row>& rows) {
    std::sort(rows.begin(), rows.end(),
              [](const Row& a, const Row& b) { return a.number < b.number; });
    for (const Row& row : rows) {
        const LibraryMessage& from = row.source->reading.conversation.messages[row.index];
        insertMessage_.bind(1, row.number);
        insertMessage_.bind(2, row.file);
        insertMessage_.bind(3, from.sequence);
        bindTime(from.date, row.number);
        row.sender ? insertMessage_.bind(5, row.sender) : insertMessage_.bindNull(5);
        insertMessage_.bind(6, qint64{from.kinds});
        insertMessage_.bindText(7, row.source->texts[row.index]);
        insertMessage_.run();
        insertWords_.bind(1, row.number);
        insertWords_.bindText(2, row.source->words[row.index]);
        insertWords_.run();
    }
}

void BatchWriter::bindTime(foundation::Date date, qint64 number) {
    const auto time = LibraryStore::timeOfDay(date, number);
    // What the calendar can't express stays as it is; null when it is no number.
    time ? insertMessage_.bind(4, *time) : insertMessage_.bind(4, date.secondsSinceReferenceDate);
}

qint64 BatchWriter::personNumber(const TesselUserID& person) {
    const auto known = people_.constFind(person);
    if (known != people_.cend()) return *known;
    const QByteArray service = person.serviceID.rawValue.toUtf8();
    const QByteArray account = person.userID.toUtf8();
    for (Statement* statement : {&insertPerson_, &findPerson_}) {
        statement->bindText(1, service);
        statement->bindText(2, account);
    }
    insertPerson_.run();
    return *people_.insert(person, findPerson_.run());
}

qint64& BatchWriter::nextNumber(qint64 firstOfDay) {
    const auto known = nextNumbers_.find(firstOfDay);
    if (known != nextNumbers_.end()) return *known;
    lastOfDay_.bind(1, firstOfDay);
    lastOfDay_.bind(2, LibraryStore::mostMessagesOnDay);
    const bool isFirst = !lastOfDay_.step() || lastOfDay_.isNull(0);
    const qint64 number = isFirst ? firstOfDay : lastOfDay_.integer(0) + 1;
    lastOfDay_.reset();
    return *nextNumbers_.insert(firstOfDay, number);
}

}  // namespace vell
