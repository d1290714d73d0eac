#pragma once
// SPDX-License-Identifier: MIT
//
// FileWalker: goes through folders on a thread of its own and hands over the transcripts it meets,
// in batches, on the window thread. Follows no links, enters no folder twice, and leaves virtual
// file systems alone. Destroying it cancels the walk without waiting for a stalled disk.

#include <QDateTime>
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
        QDateTime modified;
        qint64 size = 0;
    };

    explicit FileWalker(QObject* parent = nullptr);
    ~FileWalker() override;

    /// Begins at the folders, in order, or at the user's home and the mounted disks when none is
    /// given; a walk under way is cancelled first.
    void start(const QStringList& folders, bool hiddenFolders);
    void cancel();
    [[nodiscard]] bool isRunning() const { return walk_ != nullptr; }

  Q_SIGNALS:
    void found(const QList<vell::FileWalker::Found>& files);
    /// Files looked at so far, and the folder the walk is in.
    void progressed(qint64 files, const QString& folder);
    void finished();

  private:
    struct Walk;
    std::shared_ptr<Walk> walk_;
};

}  // namespace vell
