#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryThread: asks a library's database on a thread of its own. The newest question replaces
// those before it: they are interrupted or never asked. Destroying it waits for nothing.
//
//     thread.post([](LibraryStore& store, const LibraryThread::IsCancelled& isCancelled) { … });

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

#include "library/library_store.h"
#include "toolkit/callback_guard.h"

namespace vell {

class LibraryThread {
  public:
    using IsCancelled = std::function<bool()>;
    /// Throws DatabaseError as the store does, which is interrupted once the job is cancelled.
    using Job = std::function<void(LibraryStore& store, const IsCancelled& isCancelled)>;
    /// Called on the window thread with the reason, when the database can't be used.
    using Failed = std::function<void(const QString& reason)>;

    LibraryThread(const QByteArray& database, QObject* owner, Failed failed);
    ~LibraryThread();
    LibraryThread(const LibraryThread&) = delete;
    LibraryThread& operator=(const LibraryThread&) = delete;

    void post(Job job);
    void cancel();
    /// For what jobs have found; it calls the owner back as long as the thread's object exists.
    [[nodiscard]] const std::shared_ptr<CallbackGuard>& callbacks() const { return callbacks_; }

  private:
    struct State;
    std::shared_ptr<State> state_;
    std::shared_ptr<CallbackGuard> callbacks_;
};

}  // namespace vell
