// SPDX-License-Identifier: MIT
#include "identity/vcard/file_watch.h"

#include <QFileSystemWatcher>
#include <QSet>
#include <QTimer>
#include <chrono>
#include <utility>

namespace vell {
namespace {

using namespace std::chrono_literals;

/// Synchronisers and editors change files in bursts.
constexpr std::chrono::milliseconds burst = 150ms;
/// Each watched file costs the system something. Files beyond this many are seen to be replaced,
/// added and removed, which is how programs write one file a contact, but not edited in place.
constexpr qsizetype mostWatchedFiles = 2000;
constexpr std::chrono::milliseconds watchExitTimeout = 300ms;

}  // namespace

class FileWatch::Worker final : public QObject {
  public:
    explicit Worker(std::function<void()> changed) : changed_(std::move(changed)) {
        timer_.setSingleShot(true);
        const auto touch = [this] {
            if (!timer_.isActive()) timer_.start(burst);
        };
        connect(&timer_, &QTimer::timeout, this, &Worker::look);
        connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, touch);
        connect(&watcher_, &QFileSystemWatcher::fileChanged, this, touch);
    }

    void watch(const QStringList& paths, const ContactFiles& found) {
        paths_ = paths;
        fingerprint_ = found.fingerprint;
        (void)watchFound(found);
        look();  // for changes between the search and now
    }

  private:
    void look() {
        ContactFiles found = findContactFiles(paths_);
        // What has just appeared, an empty folder too, may be filled before it is watched.
        while (watchFound(found))
            found = findContactFiles(paths_);
        if (std::exchange(fingerprint_, found.fingerprint) != found.fingerprint) changed_();
    }

    /// Watches these and nothing else; whether any of them is new.
    [[nodiscard]] bool watchFound(const ContactFiles& found) {
        const QStringList wanted = found.folders + found.files.mid(0, mostWatchedFiles);
        const QStringList watched = watcher_.files() + watcher_.directories();
        const QSet<QString> before(watched.begin(), watched.end());
        const QSet<QString> after(wanted.begin(), wanted.end());
        if (const auto old = before - after; !old.isEmpty()) watcher_.removePaths(old.values());
        const auto added = after - before;
        return !added.isEmpty() && watcher_.addPaths(added.values()).size() < added.size();
    }

    const std::function<void()> changed_;
    QFileSystemWatcher watcher_{this};
    QTimer timer_{this};
    QStringList paths_;
    QByteArray fingerprint_;
};

FileWatch::FileWatch(std::function<void()> changed)
    : FileWatch(std::make_unique<Worker>(std::move(changed))) {}

FileWatch::FileWatch(std::unique_ptr<Worker> worker)
    : worker_(worker.get()), thread_(std::move(worker), watchExitTimeout) {}

FileWatch::~FileWatch() = default;

void FileWatch::watch(const QStringList& paths, const ContactFiles& found) {
    thread_.post([worker = worker_, paths, found] { worker->watch(paths, found); });
}

}  // namespace vell
