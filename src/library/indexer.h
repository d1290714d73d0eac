#pragma once
// SPDX-License-Identifier: MIT
//
// Indexer: brings the library's database up to date with the transcripts in some folders. It reads
// what is new or has changed, recognises files that were only moved, forgets those that are gone,
// and keeps broken ones with their reason until they change. Whenever it ends, even with the
// process, it goes on the next time from where it was.
//
// update() belongs on a thread of its own, with a store of its own: others may search in theirs
// meanwhile. Its callbacks come on that thread.
//
//     LibraryStore store(LibraryStore::defaultPath());
//     Indexer indexer(store, Indexer::Priority::background);
//     indexer.onCommitted = [] { … };   // search again
//     indexer.update(folders, stop);
//     … brokenFilesIn(store) …          // library/file_list.h

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "library/library_store.h"
#include "library/pause_switch.h"

namespace vell {

class Indexer {
  public:
    /// In the background all threads that index, the caller of update() included, get the lowest
    /// priority: whatever else the computer does comes first. They can't be raised again.
    enum class Priority { normal, background };

    struct Progress {
        qsizetype done = 0;  ///< files
        qsizetype all = 0;
        qint64 bytesDone = 0;
        qint64 bytesAll = 0;
        std::optional<int> secondsLeft;  ///< once there is something to guess it from
    };

    explicit Indexer(LibraryStore& store, Priority priority = Priority::normal)
        : store_(store), priority_(priority) {}

    /// While the folders are looked through: how many transcripts there are so far. May be empty.
    std::function<void(qsizetype count)> onFound;
    /// After each file that was read. May be empty.
    std::function<void(const Progress&)> onProgress;
    /// After each transaction: searches find from now on what was written. May be empty.
    std::function<void()> onCommitted;

    /// From any thread: while paused, no further file is read. For when documents are being opened.
    void setPaused(bool isPaused) { pause_->set(isPaused); }

    /// The folders, or single files, are canonical paths. Returns within 100 milliseconds once
    /// `stop` is set. Throws DatabaseError: of the kind `locked` when the same database is being
    /// indexed by another program, of the kind `damaged` when it is to be started anew.
    void update(const std::vector<std::string>& folders, const std::atomic<bool>& stop);

  private:
    LibraryStore& store_;
    const Priority priority_;
    // Shared with the threads that read, which may outlive this.
    const std::shared_ptr<PauseSwitch> pause_ = std::make_shared<PauseSwitch>();

    class Run;
};

/// All transcripts in the folders, by path. Incomplete once `stop` is set.
[[nodiscard]] std::vector<FoundFile> transcriptsIn(
    const std::vector<std::string>& folders, const std::atomic<bool>& stop,
    const std::function<void(qsizetype found)>& onFound = {});

}  // namespace vell
