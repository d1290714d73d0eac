// SPDX-License-Identifier: MIT
#include "app/library/folder_watch.h"

#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QSet>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

#include "foundation/local_path.h"
#include "library/changes.h"
#include "library/library_people.h"
#include "toolkit/callback_guard.h"

namespace vell {
namespace {

using namespace std::chrono_literals;

/// Files are copied and unpacked in bursts.
constexpr std::chrono::milliseconds burst = 400ms;
constexpr qsizetype mostFolders = 8192;
/// Other programs of the user need watches, too.
constexpr qsizetype shareOfWatches = 4;
constexpr std::chrono::milliseconds exitTimeout = 50ms;

qsizetype folderLimit() {
    QFile limit(QStringLiteral("/proc/sys/fs/inotify/max_user_watches"));
    if (!limit.open(QIODevice::ReadOnly)) return mostFolders;
    return std::min(mostFolders, limit.readAll().trimmed().toLongLong() / shareOfWatches);
}

/// The folder of the path and those above it, up to the given ones.
void addFoldersOf(QByteArray path, const QSet<QByteArray>& roots, QSet<QByteArray>& to) {
    for (;;) {
        path.truncate(std::max(path.lastIndexOf('/'), qsizetype{0}));
        if (path.isEmpty() || to.contains(path)) return;
        to.insert(path);
        if (roots.contains(path)) return;
    }
}

}  // namespace

class FolderWatch::Worker final : public QObject {
  public:
    Worker(std::function<void()> changed, std::shared_ptr<std::atomic<bool>> isComplete)
        : changed_(std::move(changed)), isComplete_(std::move(isComplete)) {
        timer_.setSingleShot(true);
        connect(&timer_, &QTimer::timeout, this, changed_);
        connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this](const QString& at) {
            timer_.start(burst);
            watchBelow(at);
        });
    }

    void watch(const LibraryPeople& files, const std::vector<std::string>& folders) {
        QSet<QByteArray> roots;
        for (const std::string& folder : folders)
            roots.insert(QByteArray::fromStdString(folder));
        QSet<QByteArray> wanted = roots;
        for (const auto& conversation : files.contents.conversations) {
            addFoldersOf(conversation.path, roots, wanted);
            for (const QByteArray& copy : conversation.copies)
                addFoldersOf(copy, roots, wanted);
        }
        for (const BrokenFile& file : files.contents.broken)
            addFoldersOf(file.path, roots, wanted);
        QSet<QString> paths;
        for (const QByteArray& folder : std::as_const(wanted))
            paths.insert(foundation::pathFromArgument(folder.constData()));
        appeared_.removeIf([&folders](const QString& path) {
            const QByteArray bytes = foundation::pathBytes(path);
            return std::none_of(folders.begin(), folders.end(),
                                [&](const auto& folder) { return isWithin(bytes, folder); });
        });
        watchOnly(paths);
    }

  private:
    void watchOnly(QSet<QString> wanted) {
        const QSet<QString> before = watched();
        appeared_.intersect(before);  // the others have gone
        wanted.unite(appeared_);
        if (const auto old = before - wanted; !old.isEmpty()) watcher_.removePaths(old.values());
        *isComplete_ = true;
        const qsizetype known = watcher_.directories().size();
        add((wanted - before).values());
        // What changed between the reading of a folder and this moment wasn't noticed.
        if (watcher_.directories().size() > known) timer_.start(burst);
    }
    /// Folders that have just appeared may be filled later.
    void watchBelow(const QString& folder) {
        const QSet<QString> known = watched();
        QStringList below{folder};
        for (qsizetype at = 0; at < below.size() && below.size() <= limit_; ++at) {
            const QDir parent(below[at]);
            for (const QString& name :
                 parent.entryList(QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot)) {
                const QString path = parent.filePath(name);
                if (!known.contains(path)) below.append(path);
            }
        }
        below.removeFirst();
        appeared_.unite(QSet<QString>(below.begin(), below.end()));
        add(below);
    }
    [[nodiscard]] QSet<QString> watched() const {
        const QStringList folders = watcher_.directories();
        return {folders.begin(), folders.end()};
    }
    void add(QStringList folders) {
        const qsizetype room = std::max(limit_ - watcher_.directories().size(), qsizetype{0});
        if (folders.size() > room) {
            folders.resize(room);
            *isComplete_ = false;
        }
        if (!folders.isEmpty() && !watcher_.addPaths(folders).isEmpty()) *isComplete_ = false;
    }

    const std::function<void()> changed_;
    const std::shared_ptr<std::atomic<bool>> isComplete_;
    const qsizetype limit_ = folderLimit();
    QFileSystemWatcher watcher_{this};
    /// Watched though no transcript in them is known.
    QSet<QString> appeared_;
    QTimer timer_{this};
};

FolderWatch::FolderWatch(QObject* owner, std::function<void()> changed)
    : callbacks_(std::make_shared<CallbackGuard>(owner)),
      isComplete_(std::make_shared<std::atomic<bool>>(false)) {
    auto worker = std::make_unique<Worker>(
        [callbacks = callbacks_, changed = std::move(changed)] { callbacks->post(changed); },
        isComplete_);
    worker_ = worker.get();
    thread_.emplace(std::move(worker), exitTimeout);
}

FolderWatch::~FolderWatch() {
    callbacks_->close();
}

void FolderWatch::watch(std::shared_ptr<const LibraryPeople> files,
                        std::vector<std::string> folders) {
    thread_->post([worker = worker_, files = std::move(files), folders = std::move(folders)] {
        worker->watch(*files, folders);
    });
}

}  // namespace vell
