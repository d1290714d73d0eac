#pragma once
// SPDX-License-Identifier: MIT
//
// FolderWalk: walks folders and reports the transcripts in them, on the thread that calls it.
// Follows no links below the folders named, enters no folder twice, and skips file systems
// that are no disks, unless they are named.

#include <sys/types.h>

#include <QByteArray>
#include <atomic>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vell {

struct FoundFile {
    QByteArray path;      ///< as the system's functions expect it
    qint64 size = 0;      ///< bytes
    qint64 modified = 0;  ///< nanoseconds since 1970
    quint64 inode = 0;

    friend bool operator==(const FoundFile&, const FoundFile&) = default;
};

/// Whether file systems of this type are disks that people keep documents on: neither virtual, as
/// /proc, nor gone when the machine is switched off.
[[nodiscard]] bool isDisk(const QByteArray& fileSystemType);

class FolderWalk {
  public:
    std::function<void(FoundFile)> onFound;
    /// After each entry: how many files were looked at, and the folder at hand. May be empty.
    std::function<void(qint64 files, const std::string& folder)> onFile;
    /// A folder that can't be read, and why. May be empty.
    std::function<void(const std::string& folder, const std::string& reason)> onUnreadable;
    bool hiddenFolders = false;
    /// A folder that this user may not read counts as unreadable; otherwise it is passed over.
    bool reportsForbidden = false;

    /// Walks the folders in order; a file may stand among them.
    void run(const std::vector<std::string>& folders);
    /// From any thread: run() returns after the file at hand.
    void cancel() { cancelled_ = true; }

  private:
    using FolderIdentity = std::pair<dev_t, ino_t>;

    std::atomic<bool> cancelled_ = false;
    std::set<FolderIdentity> entered_;
    std::set<std::string> skippedRoots_;
    qint64 fileCount_ = 0;

    void enter(const std::string& folder, std::vector<std::string>& pending);
    void visit(const std::filesystem::directory_entry& entry, std::vector<std::string>& pending);
    void visitFile(const std::string& path);
};

}  // namespace vell
