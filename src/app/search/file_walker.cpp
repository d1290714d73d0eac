// SPDX-License-Identifier: MIT
#include "app/search/file_walker.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStorageInfo>
#include <utility>

#include "foundation/guarded.h"
#include "foundation/local_path.h"
#include "library/folder_walk.h"
#include "toolkit/callback_guard.h"
#include "toolkit/module_logger.h"

namespace vell {
namespace {

constexpr int reportInterval = 100;  // milliseconds

/// Blocks if a disk does.
QList<FileWalker::Place> knownPlaces(const QList<QStorageInfo>& volumes) {
    using Place = FileWalker::Place;
    QList<Place> places{{Place::Kind::home, QDir::homePath(), {}}};
    for (const QStorageInfo& storage : volumes) {
        if (storage.isReady() && !storage.isRoot() && isDisk(storage.fileSystemType()))
            places.append({Place::Kind::disk, storage.rootPath(), storage.displayName()});
    }
    places.append({Place::Kind::system, QDir::rootPath(), {}});
    return places;
}

}  // namespace

/// What the walking thread owns; it reaches the walker through the window thread only.
struct FileWalker::Walk : std::enable_shared_from_this<FileWalker::Walk> {
    explicit Walk(FileWalker& owner) : walker(owner), callbacks(&owner) {}
    std::atomic<bool> cancelled = false;
    FileWalker& walker;  // alive until the walk is cancelled
    CallbackGuard callbacks;
    const std::shared_ptr<Logger> log = ModuleLogger::defaultLogger(QStringLiteral("Search"));
    FolderWalk folderWalk;
    QList<Found> batch;
    qint64 fileCount = 0;
    QElapsedTimer sinceReport;

    void run(QStringList folders);
    void end();
    void report(const std::string& folder);
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
    folderWalk.onFound = [this](const FoundFile& file) {
        batch.append({foundation::pathFromArgument(file.path.constData()), file.size});
    };
    folderWalk.onFile = [this](qint64 count, const std::string& folder) {
        fileCount = count;
        if (sinceReport.elapsed() >= reportInterval) report(folder);
    };
    folderWalk.onUnreadable = [this](const std::string& folder, const std::string& reason) {
        log->warn("Could not read a folder:", folder.c_str(), reason);
    };
    sinceReport.start();
    std::vector<std::string> paths;
    for (const QString& folder : folders)
        paths.push_back(foundation::pathBytes(folder).toStdString());
    folderWalk.run(paths);
    report({});
    end();
}

void FileWalker::Walk::end() {
    post([](FileWalker& to) {
        to.walk_.reset();
        Q_EMIT to.finished();
    });
}

void FileWalker::Walk::report(const std::string& folder) {
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
    walk_->folderWalk.hiddenFolders = hiddenFolders;
    // Detached, as reading a folder may stall; the walk owns all that the thread touches.
    foundation::runDetached([walk = walk_, folders] { walk->run(folders); },
                            [walk = walk_] { walk->end(); });
}

void FileWalker::cancel() {
    if (!walk_) return;
    walk_->cancelled = true;
    walk_->folderWalk.cancel();
    walk_->callbacks.close();
    walk_.reset();
}

}  // namespace vell
