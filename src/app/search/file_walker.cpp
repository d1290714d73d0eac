// SPDX-License-Identifier: MIT
#include "app/search/file_walker.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStorageInfo>
#include <filesystem>
#include <set>
#include <utility>

#include "app/search/transcript_probe.h"
#include "foundation/guarded.h"
#include "foundation/local_path.h"
#include "toolkit/callback_guard.h"
#include "toolkit/module_logger.h"

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace vell {
namespace {

namespace fs = std::filesystem;

constexpr int reportInterval = 100;  // milliseconds

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

/// Blocks if a disk does.
QList<FileWalker::Place> knownPlaces(const QList<QStorageInfo>& volumes) {
    using Place = FileWalker::Place;
    QList<Place> places{{Place::Kind::home, QDir::homePath(), {}}};
    for (const QStorageInfo& storage : volumes) {
        const QByteArray type = storage.fileSystemType();
        if (storage.isReady() && !storage.isRoot() && !isVirtual(type) && !isTransient(type))
            places.append({Place::Kind::disk, storage.rootPath(), storage.displayName()});
    }
    places.append({Place::Kind::system, QDir::rootPath(), {}});
    return places;
}

#ifdef Q_OS_UNIX
using FolderIdentity = std::pair<dev_t, ino_t>;

std::optional<FolderIdentity> identity(const fs::path& folder) {
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) return std::nullopt;
    return FolderIdentity(status.st_dev, status.st_ino);
}
#else
using FolderIdentity = fs::path;

std::optional<FolderIdentity> identity(const fs::path& folder) {
    std::error_code error;
    auto canonical = fs::canonical(folder, error);
    if (error) return std::nullopt;
    return canonical;
}
#endif

bool isTranscript(const QString& path, const QString& name) {
    if (hasTranscriptExtension(name)) return true;
    QFile file;
    if (!foundation::openForReading(file, path)) return false;
    QByteArray head = file.read(archiveMagicSize);
    if (!beginsLikeArchive(head)) return false;
    head += file.read(transcriptProbeSize - head.size());
    return looksLikeTranscript(head);
}

}  // namespace

/// What the walking thread owns; it reaches the walker through the window thread only.
struct FileWalker::Walk : std::enable_shared_from_this<FileWalker::Walk> {
    explicit Walk(FileWalker& owner) : walker(owner), callbacks(&owner) {}
    std::atomic<bool> cancelled = false;
    FileWalker& walker;  // alive until the walk is cancelled
    CallbackGuard callbacks;
    const std::shared_ptr<Logger> log = ModuleLogger::defaultLogger(QStringLiteral("Search"));
    bool hiddenFolders = false;
    std::set<FolderIdentity> entered;
    std::set<fs::path> skippedRoots;
    QList<Found> batch;
    qint64 fileCount = 0;
    QElapsedTimer sinceReport;

    void run(QStringList folders);
    void end();
    void enter(const fs::path& folder, std::vector<fs::path>& pending);
    void visit(const fs::directory_entry& entry, std::vector<fs::path>& pending);
    void report(const fs::path& folder);
    template <class Function>
    void post(Function function);
};

template <class Function>
void FileWalker::Walk::post(Function function) {
    callbacks.post([walk = shared_from_this(), function = std::move(function)] {
        if (!walk->cancelled) function(walk->walker);
    });
}

void FileWalker::Walk::run(QStringList folders) {
    const auto volumes = QStorageInfo::mountedVolumes();
    const auto places = knownPlaces(volumes);
    post([places](FileWalker& to) { Q_EMIT to.placesKnown(places); });
    if (folders.isEmpty()) {
        for (const Place& place : places)
            if (place.kind != Place::Kind::system) folders.append(place.path);
    }
    for (const QStorageInfo& storage : volumes) {
        const QByteArray type = storage.fileSystemType();
        const QString root = storage.rootPath();
        if (isVirtual(type) || (isTransient(type) && !folders.contains(root)))
            skippedRoots.insert(root.toStdString());
    }
    sinceReport.start();
    std::vector<fs::path> pending;
    for (auto folder = folders.crbegin(); folder != folders.crend(); ++folder)
        pending.push_back(foundation::pathBytes(*folder).toStdString());
    while (!pending.empty() && !cancelled) {
        const fs::path folder = std::move(pending.back());
        pending.pop_back();
        enter(folder, pending);
    }
    report({});
    end();
}

void FileWalker::Walk::end() {
    post([](FileWalker& to) {
        to.walk_.reset();
        Q_EMIT to.finished();
    });
}

void FileWalker::Walk::enter(const fs::path& folder, std::vector<fs::path>& pending) {
    const auto self = identity(folder);
    if (!self || !entered.insert(*self).second || skippedRoots.contains(folder)) return;
    std::error_code error;
    fs::directory_iterator entries(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && entries != fs::directory_iterator() && !cancelled; entries.increment(error)) {
        try {
            visit(*entries, pending);
        } catch (const std::exception&) {
            continue;  // the other files are still listed
        }
        if (sinceReport.elapsed() >= reportInterval) report(folder);
    }
    if (error) log->warn("Could not read a folder:", folder.c_str(), error.message());
}

void FileWalker::Walk::visit(const fs::directory_entry& entry, std::vector<fs::path>& pending) {
    std::error_code error;
    const fs::file_status status = entry.symlink_status(error);
    if (error) return;
    const std::string fileName = entry.path().filename().string();
    if (fs::is_directory(status)) {
        if (hiddenFolders || !fileName.starts_with('.')) pending.push_back(entry.path());
        return;
    }
    if (!fs::is_regular_file(status)) return;
    ++fileCount;
    const QString path = foundation::pathFromArgument(entry.path().c_str());
    if (!isTranscript(path, QFile::decodeName(fileName.c_str()))) return;
    const auto size = static_cast<qint64>(entry.file_size(error));
    batch.append({path, error ? 0 : size});
}

void FileWalker::Walk::report(const fs::path& folder) {
    sinceReport.restart();
    post([files = std::exchange(batch, {}), count = fileCount,
          where = QFile::decodeName(folder.c_str())](FileWalker& to) {
        if (!files.isEmpty()) Q_EMIT to.found(files);
        Q_EMIT to.progressed(count, where);
    });
}

FileWalker::FileWalker(QObject* parent) : QObject(parent) {}

FileWalker::~FileWalker() {
    cancel();
}

void FileWalker::start(const QStringList& folders, bool hiddenFolders) {
    cancel();
    walk_ = std::make_shared<Walk>(*this);
    walk_->hiddenFolders = hiddenFolders;
    // Detached, as reading a folder may stall; the walk owns all that the thread touches.
    foundation::runDetached([walk = walk_, folders] { walk->run(folders); },
                            [walk = walk_] { walk->end(); });
}

void FileWalker::cancel() {
    if (!walk_) return;
    walk_->cancelled = true;
    walk_->callbacks.close();
    walk_.reset();
}

}  // namespace vell
