// SPDX-License-Identifier: MIT
#include "library/library_contents.h"

#include <QHash>
#include <algorithm>
#include <limits>

#include "library/changes.h"
#include "library/conversation.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestFirstWords = 160;

bool isInFolders(const QByteArray& path, const std::vector<std::string>& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&path](const std::string& folder) { return isWithin(path, folder); });
}

/// Reads the tables one after the other into contents.
class ContentsReader {
  public:
    ContentsReader(Database& database, LibraryContents& contents)
        : database_(database), contents_(contents) {}

    void readPeople() {
        Statement rows = database_.prepare("SELECT id, service, account FROM people ORDER BY id");
        while (rows.step()) {
            people_.insert(rows.integer(0), static_cast<int>(contents_.people.size()));
            contents_.people.push_back({{rows.text(1)}, rows.text(2)});
        }
    }
    void readFiles(const std::vector<std::string>& folders) {
        Statement rows = database_.prepare(
            "SELECT id, path, hash, reason, messages, firstDate, lastDate, owner FROM files "
            "ORDER BY path");
        QHash<QByteArray, std::size_t> byHash;
        auto& conversations = contents_.conversations;
        while (rows.step()) {
            QByteArray path = rows.bytes(1);
            if (!isInFolders(path, folders)) continue;
            if (!rows.isNull(3)) {
                contents_.broken.push_back({std::move(path), rows.text(3)});
                continue;
            }
            const QByteArray hash = rows.bytes(2);
            if (const auto same = byHash.constFind(hash); same != byHash.cend()) {
                conversations[*same].copies.push_back(std::move(path));
                continue;
            }
            byHash.insert(hash, conversations.size());
            conversations.push_back({rows.integer(0),
                                     std::move(path),
                                     {},
                                     rows.integer(4),
                                     rows.date(5),
                                     rows.date(6),
                                     people_.value(rows.integer(7), -1),
                                     {}});
        }
    }
    void readOthers() {
        QHash<qint64, LibraryConversation*> byNumber;
        for (LibraryConversation& conversation : contents_.conversations)
            byNumber.insert(conversation.file, &conversation);
        Statement rows =
            database_.prepare("SELECT file, person FROM participants ORDER BY file, person");
        while (rows.step()) {
            LibraryConversation* conversation = byNumber.value(rows.integer(0));
            const int person = people_.value(rows.integer(1), -1);
            if (conversation && person >= 0 && person != conversation->owner)
                conversation->others.push_back(person);
        }
    }

  private:
    Database& database_;
    LibraryContents& contents_;
    QHash<qint64, int> people_;
};

/// Conversations without a date come last.
bool isLater(const LibraryConversation& a, const LibraryConversation& b) {
    const auto key = [](const LibraryConversation& conversation) {
        const double begin = conversation.begin.secondsSinceReferenceDate;
        return begin == begin ? begin : -std::numeric_limits<double>::infinity();
    };
    return key(a) != key(b) ? key(a) > key(b) : a.path < b.path;
}

}  // namespace

LibraryContents LibraryContents::read(LibraryStore& store,
                                      const std::vector<std::string>& folders) {
    LibraryContents contents;
    Database& database = store.database();
    // One state of the database, whatever is written meanwhile.
    Transaction transaction(database, Transaction::Kind::reading);
    ContentsReader reader(database, contents);
    reader.readPeople();
    reader.readFiles(folders);
    reader.readOthers();
    transaction.commit();
    std::sort(contents.conversations.begin(), contents.conversations.end(), isLater);
    return contents;
}

QString firstWords(LibraryStore& store, qint64 file) {
    Statement rows = store.database().prepare(
        "SELECT m.kinds, substr(m.text, 1, ?2) FROM messages m JOIN "
        "(SELECT min(first) AS number FROM stretches WHERE file = ?1) ON m.id = number");
    rows.bind(1, file);
    rows.bind(2, qint64{longestFirstWords});
    if (!rows.step()) return {};
    const QString text = rows.text(1).simplified();
    return text.isEmpty() ? placeholderFor(static_cast<quint8>(rows.integer(0))) : text;
}

}  // namespace vell
