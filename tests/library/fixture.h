#pragma once
// SPDX-License-Identifier: MIT
//
// A folder with transcripts and a database beside it.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <filesystem>

#include "library/indexer.h"
#include "library/library_search.h"
#include "writers/transcript_writer.h"

namespace vell::test {

inline const std::atomic<bool> neverStops = false;

class Fixture {
  public:
    QTemporaryDir place;
    /// Canonical, as an indexer wants it.
    const std::string chats =
        std::filesystem::canonical(place.path().toStdString()).native() + "/chats";
    const QByteArray database = QFile::encodeName(place.filePath(QStringLiteral("db/messages")));

    Fixture() { std::filesystem::create_directory(chats); }

    [[nodiscard]] QString path(const QString& name) const {
        return QString::fromStdString(chats) + QLatin1Char('/') + name;
    }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly)) file.write(bytes);
    }
    /// A chat of one person who says this, one text a minute.
    void chat(const QString& name, const QStringList& texts) const {
        writers::Transcript chat{.service = QStringLiteral("AIM"), .people = {{name}}};
        for (const QString& text : texts) {
            chat.messages.push_back({.sender = 0,
                                     .date = 60.0 * static_cast<double>(chat.messages.size()),
                                     .body = {writers::words(text)}});
        }
        write(name, writers::keyedTranscript(chat));
    }
    void update(LibraryStore& store) const { Indexer(store).update({chats}, neverStops); }
};

/// All that was indexed, in an order that doesn't depend on when it was.
[[nodiscard]] inline QStringList dump(LibraryStore& store) {
    QStringList lines;
    for (const char* sql :
         {"SELECT path || '|' || hash || '|' || ifnull(reason, '') || '|' || messages || '|' || "
          "ifnull(account, '') || '|' || ifnull(firstDate, '') || '|' || ifnull(lastDate, '') "
          "FROM files LEFT JOIN people ON people.id = owner ORDER BY path",
          "SELECT ifnull(path, 'none') || '|' || sum(count) FROM stretches "
          "LEFT JOIN files ON files.id = file GROUP BY file ORDER BY 1",
          "SELECT path || '|' || account FROM participants JOIN files ON files.id = file "
          "JOIN people ON people.id = person ORDER BY 1",
          "SELECT path || '|' || sequence || '|' || date || '|' || ifnull(account, '') || '|' || "
          "kinds || '|' || text FROM messages m JOIN files ON files.id = file "
          "LEFT JOIN people ON people.id = sender ORDER BY path, sequence"}) {
        Statement rows = store.database().prepare(sql);
        while (rows.step())
            lines.append(rows.text(0));
    }
    return lines;
}

}  // namespace vell::test
