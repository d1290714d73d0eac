// SPDX-License-Identifier: MIT
#include "library/indexer.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "library/batch_writer.h"
#include "library/changes.h"
#include "library/checkpointer.h"
#include "library/parallel_files.h"

namespace vell {
namespace {

constexpr qint64 guessAfter = 1000;        // milliseconds
constexpr qint64 indexLockTimeout = 1000;  // milliseconds
constexpr std::chrono::milliseconds lockInterval{20};
/// Nice values. There is one writer, which has more to do than one reader: the readers get what it
/// leaves of the processors, or it would be alone for long at the end.
constexpr int readersAfterWriter = 5;
constexpr int backgroundWriter = 14;

/// Held by the one that indexes; the system releases it with the process.
class IndexingLock {
  public:
    /// Throws DatabaseError of the kind `locked`.
    IndexingLock(const QByteArray& database, const std::atomic<bool>& stop)
        : descriptor_(::open((database + "-indexing").constData(),
                             O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
        QElapsedTimer waited;
        waited.start();
        while (descriptor_ >= 0 && ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && !stop) {
            if (errno != EWOULDBLOCK && errno != EINTR) return;  // not on this file system
            if (waited.elapsed() > indexLockTimeout) {
                ::close(descriptor_);
                throw DatabaseError(DatabaseError::Kind::locked,
                                    "another program is bringing it up to date");
            }
            std::this_thread::sleep_for(lockInterval);
        }
    }
    ~IndexingLock() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    IndexingLock(const IndexingLock&) = delete;
    IndexingLock& operator=(const IndexingLock&) = delete;

  private:
    const int descriptor_;
};

void usePriority(Indexer::Priority priority, int lower = 0) {
    const int usual = priority == Indexer::Priority::background ? backgroundWriter : 0;
    // On Linux that of the calling thread.
    if (usual + lower > 0) ::setpriority(PRIO_PROCESS, 0, usual + lower);
}

}  // namespace

/// One update, once what has changed is known.
class Indexer::Run {
  public:
    Run(Indexer& indexer, Changes& changes, const std::atomic<bool>& stop)
        : indexer_(indexer),
          changes_(changes),
          stop_(stop),
          writer_(indexer.store_, [&stop] { return stop.load(); }),
          checkpointer_(indexer.store_.path(),
                        [priority = indexer.priority_] { usePriority(priority); }) {}

    void run() {
        for (const auto& [number, file] : changes_.moved)
            writer_.update(number, file);
        progress_.all = std::ssize(changes_.toRead);
        for (const FoundFile& file : changes_.toRead)
            progress_.bytesAll += file.size;
        elapsed_.start();
        pausedBefore_ = indexer_.pause_->total();
        read(changes_.toRead, changes_.knownHashes());
        read(std::move(again_), {});
        if (stop_) return;
        for (const qint64 number : changes_.vanished())
            writer_.remove(number);
        flush();
        checkpointer_.finish(stop_);
    }

  private:
    Indexer& indexer_;
    Changes& changes_;
    const std::atomic<bool>& stop_;
    BatchWriter writer_;
    Checkpointer checkpointer_;
    /// Files of known content that has to be read nevertheless.
    std::vector<FoundFile> again_;
    Progress progress_;
    QElapsedTimer elapsed_;
    std::chrono::milliseconds pausedBefore_{0};

    void read(std::vector<FoundFile> toRead, const TranscriptReader::Hashes& known) {
        const auto makeWork = [known, priority = indexer_.priority_] {
            usePriority(priority, readersAfterWriter);
            return [reader = std::make_shared<TranscriptReader>(known),
                    tokenizer = std::make_shared<TextTokenizer>()](const FoundFile& file) {
                return prepared(reader->read(file), *tokenizer);
            };
        };
        ParallelFiles<PreparedFile> files(std::move(toRead), makeWork, &PreparedFile::bytes,
                                          indexer_.pause_);
        while (auto file = files.next(stop_)) {
            const qint64 size = file->reading.file.size;
            if (!apply(*std::move(file))) continue;
            if (writer_.isFull()) flush();
            report(size);
        }
    }

    /// False when the file has to be read again.
    bool apply(PreparedFile file) {
        const FoundFile& now = file.reading.file;
        const Changes::KnownFile* before = changes_.at(now.path);
        if (file.reading.isKnown && before && before->hash == file.reading.hash) {
            writer_.update(before->id, now);
            return true;
        }
        if (file.reading.isKnown) {
            const auto number = changes_.takeVanished(file.reading.hash);
            if (number) {
                if (before) writer_.remove(before->id);
                writer_.update(*number, now);
            } else {
                // One of several copies, of which another was taken for the one that moved.
                again_.push_back(now);
            }
            return number.has_value();
        }
        if (before) writer_.remove(before->id);
        writer_.add(std::move(file));
        return true;
    }

    void flush() {
        if (!writer_.flush()) return;
        if (indexer_.onCommitted) indexer_.onCommitted();
        checkpointer_.run(stop_);
    }

    void report(qint64 size) {
        ++progress_.done;
        progress_.bytesDone += size;
        const qint64 worked =
            elapsed_.elapsed() - (indexer_.pause_->total() - pausedBefore_).count();
        if (worked > guessAfter && progress_.bytesDone > 0) {
            const qint64 left = std::max<qint64>(0, progress_.bytesAll - progress_.bytesDone);
            progress_.secondsLeft =
                static_cast<int>(static_cast<double>(worked) / 1000 * static_cast<double>(left) /
                                 static_cast<double>(progress_.bytesDone));
        }
        if (indexer_.onProgress) indexer_.onProgress(progress_);
    }
};

std::vector<FoundFile> transcriptsIn(const std::vector<std::string>& folders,
                                     const std::atomic<bool>& stop,
                                     const std::function<void(qsizetype found)>& onFound) {
    std::vector<FoundFile> found;
    FolderWalk walk;
    walk.onFound = [&](FoundFile file) {
        found.push_back(std::move(file));
        if (onFound) onFound(std::ssize(found));
    };
    walk.onFile = [&](qint64, const std::string&) {
        if (stop) walk.cancel();
    };
    walk.run(folders);
    const auto isLess = [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; };
    const auto isSame = [](const FoundFile& a, const FoundFile& b) { return a.path == b.path; };
    std::sort(found.begin(), found.end(), isLess);
    found.erase(std::unique(found.begin(), found.end(), isSame), found.end());
    return found;
}

void Indexer::update(const std::vector<std::string>& folders, const std::atomic<bool>& stop) {
    usePriority(priority_);
    const IndexingLock lock(store_.path(), stop);
    std::vector<FoundFile> found = transcriptsIn(folders, stop, onFound);
    if (stop) return;
    try {
        Changes changes(store_.files(), std::move(found), folders);
        Run(*this, changes, stop).run();
    } catch (const DatabaseError& error) {
        if (error.kind() != DatabaseError::Kind::interrupted) throw;
    }
    if (stop) store_.database().keepLogWhenClosed();
}

}  // namespace vell
