#pragma once
// SPDX-License-Identifier: MIT
//
// FileWalker: walks folders on a thread of its own and reports the transcripts it finds, in
// batches, on the window thread. Follows no links, enters no folder twice, and skips virtual file
// systems. Destroying it cancels the walk without waiting for a stalled disk.

#include <QObject>
#include <QStringList>
#include <atomic>
#include <memory>

namespace vell {

class FileWalker final : public QObject {
    Q_OBJECT

  public:
    struct Found {
        QString path;
        qint64 size = 0;
    };

    /// Where transcripts may be: the user's home, the mounted disks, and the system's disk.
    struct Place {
        enum class Kind { home, disk, system };
        Kind kind;
        QString path;
        QString name;
    };

    explicit FileWalker(QObject* parent = nullptr);
    ~FileWalker() override;

    /// Walks the folders in order, or the user's home and the mounted disks, but not the system's,
    /// if there are none; a walk in progress is cancelled first.
    void start(const QStringList& folders, bool hiddenFolders);
    void cancel();
    [[nodiscard]] bool isRunning() const { return walk_ != nullptr; }

  Q_SIGNALS:
    /// Sent before anything else.
    void placesKnown(const QList<vell::FileWalker::Place>& places);
    void found(const QList<vell::FileWalker::Found>& files);
    /// Files looked at so far, and the folder the walk is in.
    void progressed(qint64 files, const QString& folder);
    void finished();

  private:
    struct Walk;
    std::shared_ptr<Walk> walk_;
};

}  // namespace vell
