#pragma once
// SPDX-License-Identifier: MIT
//
// Indexer: brings the library's database up to date with the transcripts in some folders. It reads
// what is new or has changed, recognises files that were only moved, forgets those that are gone,
// and keeps broken ones with their reason until they change. Whenever it ends, even with the
// process, it goes on the next time from where it was.

#include <atomic>
#include <functional>
#include <optional>

#include "library/library_store.h"

namespace vell {

class Indexer {
  public:
    struct Progress {
        qsizetype done = 0;  ///< files
        qsizetype all = 0;
        std::optional<int> secondsLeft;  ///< once there is something to guess it from
    };

    explicit Indexer(LibraryStore& store) : store_(store) {}

    /// After each file that was read. May be empty.
    std::function<void(const Progress&)> onProgress;

    /// The folders, or single files, are canonical paths. Returns within 100 milliseconds once
    /// `stop` is set. Throws DatabaseError.
    void update(const std::vector<std::string>& folders, const std::atomic<bool>& stop);

  private:
    LibraryStore& store_;
};

/// Whether the path is the folder or below it.
[[nodiscard]] bool isWithin(QByteArrayView path, const std::string& folder);

/// All transcripts in the folders, by path. Incomplete once `stop` is set.
[[nodiscard]] std::vector<FoundFile> transcriptsIn(const std::vector<std::string>& folders,
                                                   const std::atomic<bool>& stop);

}  // namespace vell
