#pragma once
// SPDX-License-Identifier: MIT
//
// BatchWriter: collects changes of a library and writes them in large transactions, each file whole
// or not at all. The words' index wants its rows in the order of their numbers; in any other it
// would write them out again and again.

#include <QHash>
#include <functional>
#include <vector>

#include "library/file_reading.h"
#include "library/library_store.h"
#include "toolkit/text_tokens.h"

namespace vell {

/// Texts in UTF-8, one behind the other.
class PackedTexts {
  public:
    void reserve(std::size_t count, qsizetype bytes);
    void append(QStringView text);
    [[nodiscard]] QByteArrayView operator[](std::size_t index) const;
    [[nodiscard]] std::size_t bytes() const;

  private:
    QByteArray bytes_;
    std::vector<qsizetype> ends_;
};

/// A file that was read, and its messages as the database keeps them.
struct PreparedFile {
    FileReading reading;
    PackedTexts texts;  ///< one for each message
    PackedTexts words;  ///< the tokens of each, divided by blanks

    /// That it occupies in memory, roughly.
    [[nodiscard]] std::size_t bytes() const;
};
/// Takes the texts out of the reading.
[[nodiscard]] PreparedFile prepared(FileReading reading, TextTokenizer& tokenizer);

class BatchWriter {
  public:
    /// While `isCancelled` returns true nothing is written: flush() throws DatabaseError of the
    /// kind `interrupted`.
    BatchWriter(LibraryStore& store, std::function<bool()> isCancelled);
    ~BatchWriter();
    BatchWriter(const BatchWriter&) = delete;
    BatchWriter& operator=(const BatchWriter&) = delete;

    void add(PreparedFile file);
    void remove(qint64 file);
    /// The file has its content still, and perhaps another path.
    void update(qint64 file, const FoundFile& now);
    /// Whether it is time to flush.
    [[nodiscard]] bool isFull() const;
    /// Writes all of it; the files are safe then, whatever happens to the program. Whether there
    /// was anything to write.
    bool flush();

  private:
    struct Row {
        qint64 number;
        qint64 file;
        qint64 sender;  // 0: none
        const PreparedFile* source;
        std::size_t index;
    };

    Database& database_;
    Statement insertFile_;
    Statement insertParticipant_;
    Statement insertPerson_;
    Statement findPerson_;
    Statement insertStretch_;
    Statement lastOfDay_;
    Statement insertMessage_;
    Statement insertWords_;
    std::vector<PreparedFile> added_;
    std::vector<qint64> removed_;
    std::vector<std::pair<qint64, FoundFile>> updated_;
    std::size_t messageCount_ = 0;
    std::size_t fullBatch_;
    QHash<TesselUserID, qint64> people_;
    QHash<qint64, qint64> nextNumbers_;  // by the first one of the day

    void removeAll();
    void updateAll();
    void addAll();
    void addFile(const PreparedFile& file, std::vector<Row>& rows);
    qint64 insertFile(const FileReading& reading, const QByteArray& reason);
    /// What lists of conversations tell of a file.
    void bindSummary(const Conversation& conversation);
    [[nodiscard]] std::vector<qint64> insertPeople(const Conversation& conversation, qint64 file);
    void addRows(std::vector<Row>& rows);
    void bindTime(foundation::Date date, qint64 number);
    [[nodiscard]] qint64 personNumber(const TesselUserID& person);
    [[nodiscard]] qint64& nextNumber(qint64 firstOfDay);
};

}  // namespace vell
