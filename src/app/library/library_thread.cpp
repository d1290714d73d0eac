// SPDX-License-Identifier: MIT
#include "app/library/library_thread.h"

#include <sys/stat.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "foundation/guarded.h"

namespace vell {

struct LibraryThread::State {
    QByteArray database;
    Failed failed;
    std::shared_ptr<CallbackGuard> callbacks;

    std::mutex mutex;
    std::condition_variable changed;
    Job next;
    bool isClosed = false;
    bool isRunning = false;
    std::atomic<quint64> newest = 0;

    std::unique_ptr<LibraryStore> store;  // of the thread
    ino_t inode = 0;

    static void run(const std::shared_ptr<State>& state);
    void carryOut(const Job& job, const IsCancelled& isCancelled);
    void open();
    void report(const QString& reason) {
        store.reset();
        callbacks->post([tell = failed, reason] { tell(reason); });
    }
};

LibraryThread::LibraryThread(const QByteArray& database, QObject* owner, Failed failed)
    : state_(std::make_shared<State>()), callbacks_(std::make_shared<CallbackGuard>(owner)) {
    state_->database = database;
    state_->failed = std::move(failed);
    state_->callbacks = callbacks_;
}

LibraryThread::~LibraryThread() {
    callbacks_->close();
    const std::lock_guard lock(state_->mutex);
    ++state_->newest;
    state_->isClosed = true;
    state_->changed.notify_all();
}

void LibraryThread::post(Job job) {
    const std::lock_guard lock(state_->mutex);
    ++state_->newest;
    state_->next = std::move(job);
    state_->changed.notify_all();
    if (std::exchange(state_->isRunning, true)) return;
    foundation::runDetached([state = state_] { State::run(state); },
                            [state = state_] {
                                const std::lock_guard lock(state->mutex);
                                state->isRunning = false;
                            });
}

void LibraryThread::cancel() {
    const std::lock_guard lock(state_->mutex);
    ++state_->newest;
    state_->next = {};
}

void LibraryThread::State::run(const std::shared_ptr<State>& state) {
    for (;;) {
        Job job;
        quint64 number = 0;
        {
            std::unique_lock lock(state->mutex);
            state->changed.wait(lock, [&] { return state->isClosed || state->next; });
            if (state->isClosed) return;
            job = std::exchange(state->next, {});
            number = state->newest;
        }
        state->carryOut(job, [state = state.get(), number] { return state->newest != number; });
    }
}

void LibraryThread::State::carryOut(const Job& job, const IsCancelled& isCancelled) {
    try {
        open();
        store->database().interruptWhen(isCancelled);
        job(*store, isCancelled);
        store->database().interruptWhen({});
    } catch (const DatabaseError& error) {
        if (error.kind() != DatabaseError::Kind::interrupted)
            return report(QString::fromUtf8(error.what()));
        store->database().interruptWhen({});
    } catch (const StoreRefusal& refusal) {
        report(refusal.reason);
    }
}

/// The database may have been replaced since the last job.
void LibraryThread::State::open() {
    struct stat now {};
    const bool isThere = ::stat(database.constData(), &now) == 0;
    if (store && isThere && now.st_ino == inode) return;
    store.reset();
    store = std::make_unique<LibraryStore>(database, LibraryStore::Access::read);
    inode = ::stat(database.constData(), &now) == 0 ? now.st_ino : 0;
}

}  // namespace vell
