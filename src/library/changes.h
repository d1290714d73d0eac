#pragma once
// SPDX-License-Identifier: MIT
//
// Changes: what the database has to learn about its folders, from what it knows and what is there.

#include <QHash>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "library/file_reading.h"
#include "library/library_store.h"

namespace vell {

class Changes {
  public:
    using KnownFile = LibraryStore::KnownFile;

    /// What was found is in the order of its paths.
    Changes(const std::vector<KnownFile>& known, std::vector<FoundFile> found,
            const std::vector<std::string>& folders);

    /// New and changed files.
    std::vector<FoundFile> toRead;
    /// Files at another path that are otherwise as they were.
    std::vector<std::pair<qint64, FoundFile>> moved;

    /// What the database has at the path; null when it has nothing.
    [[nodiscard]] const KnownFile* at(const QByteArray& path) const;
    /// Takes a file of this content that isn't at its place any longer.
    [[nodiscard]] std::optional<qint64> takeVanished(const QByteArray& hash);
    /// Those that nothing has taken.
    [[nodiscard]] std::vector<qint64> vanished() const;
    /// Of contents that needn't be read again.
    [[nodiscard]] TranscriptReader::Hashes knownHashes() const;

  private:
    QHash<QByteArray, KnownFile> known_;
    std::multimap<QByteArray, qint64> vanished_;  // by hash

    void findMoves(std::vector<FoundFile>& newFiles, std::vector<KnownFile>& gone);
};

/// Whether the path is the folder or below it.
[[nodiscard]] bool isWithin(QByteArrayView path, const std::string& folder);

}  // namespace vell
