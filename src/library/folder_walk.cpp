// SPDX-License-Identifier: MIT
#include "library/folder_walk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QStorageInfo>
#include <algorithm>
#include <exception>

#include "library/transcript_probe.h"

namespace vell {
namespace {

namespace fs = std::filesystem;

/// Types of file system that hold no documents and may be endless.
bool isVirtual(const QByteArray& fileSystemType) {
    static const std::set<QByteArray> types{
        "proc",    "sysfs",    "devtmpfs", "devpts",     "cgroup", "cgroup2",    "securityfs",
        "debugfs", "tracefs",  "configfs", "pstore",     "mqueue", "hugetlbfs",  "bpf",
        "autofs",  "efivarfs", "fusectl",  "rpc_pipefs", "nsfs",   "binfmt_misc"};
    return types.contains(fileSystemType);
}

/// Types that aren't disks of the user's; they are searched only if a folder on them is named.
bool isTransient(const QByteArray& fileSystemType) {
    static const std::set<QByteArray> types{"tmpfs", "ramfs", "squashfs", "overlay"};
    return types.contains(fileSystemType);
}

/// The first bytes of a file; as many as there are.
QByteArray headOf(int descriptor, qsizetype size) {
    QByteArray head(size, Qt::Uninitialized);
    const ssize_t read = ::pread(descriptor, head.data(), static_cast<std::size_t>(size), 0);
    head.truncate(read > 0 ? read : 0);
    return head;
}

bool holdsTranscript(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool holds = beginsLikeArchive(headOf(descriptor, archiveMagicSize)) &&
                       looksLikeTranscript(headOf(descriptor, transcriptProbeSize));
    ::close(descriptor);
    return holds;
}

bool isTranscript(const std::string& path) {
    return hasTranscriptExtension(QString::fromLatin1(path.c_str())) || holdsTranscript(path);
}

}  // namespace

bool isDisk(const QByteArray& fileSystemType) {
    return !isVirtual(fileSystemType) && !isTransient(fileSystemType);
}

void FolderWalk::run(const std::vector<std::string>& folders) {
    for (const QStorageInfo& storage : QStorageInfo::mountedVolumes()) {
        const QByteArray type = storage.fileSystemType();
        const std::string root = storage.rootPath().toStdString();
        const bool isNamed = std::find(folders.begin(), folders.end(), root) != folders.end();
        if (isVirtual(type) || (isTransient(type) && !isNamed)) skippedRoots_.insert(root);
    }
    std::vector<std::string> pending(folders.rbegin(), folders.rend());
    while (!pending.empty() && !cancelled_) {
        const std::string path = std::move(pending.back());
        pending.pop_back();
        std::error_code error;
        if (fs::is_regular_file(path, error))
            visitFile(path);
        else
            enter(path, pending);
    }
}

void FolderWalk::enter(const std::string& folder, std::vector<std::string>& pending) {
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) return;
    if (!entered_.insert({status.st_dev, status.st_ino}).second || skippedRoots_.contains(folder))
        return;
    std::error_code error;
    fs::directory_iterator entries(folder,
                                   reportsForbidden ? fs::directory_options::none
                                                    : fs::directory_options::skip_permission_denied,
                                   error);
    for (; !error && entries != fs::directory_iterator() && !cancelled_; entries.increment(error)) {
        try {
            visit(*entries, pending);
        } catch (const std::exception&) {
            continue;  // the other files are still listed
        }
        if (onFile) onFile(fileCount_, folder);
    }
    if (error && onUnreadable) onUnreadable(folder, error.message());
}

void FolderWalk::visit(const fs::directory_entry& entry, std::vector<std::string>& pending) {
    std::error_code error;
    const fs::file_status status = entry.symlink_status(error);
    if (error) return;
    if (fs::is_directory(status)) {
        const bool isHidden = entry.path().filename().native().starts_with('.');
        if (hiddenFolders || !isHidden) pending.push_back(entry.path().native());
    } else if (fs::is_regular_file(status)) {
        ++fileCount_;
        if (isTranscript(entry.path().native())) visitFile(entry.path().native());
    }
}

void FolderWalk::visitFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return;
    onFound({QByteArray::fromStdString(path), status.st_size,
             status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec, status.st_ino});
}

}  // namespace vell
