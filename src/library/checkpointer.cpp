// SPDX-License-Identifier: MIT
#include "library/checkpointer.h"

#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "foundation/guarded.h"
#include "library/database.h"

namespace vell {
namespace {

constexpr std::chrono::milliseconds stopCheckInterval{20};
constexpr qint64 longestLog = qint64{128} << 20;

qint64 sizeOf(const QByteArray& path) {
    struct stat status {};
    return ::stat(path.constData(), &status) == 0 ? status.st_size : 0;
}

}  // namespace

struct Checkpointer::State {
    const QByteArray path;
    const std::function<void()> begin;
    std::mutex mutex;
    std::condition_variable changed;
    bool isRunning = false;  // the thread
    bool isBusy = false;
    bool isWanted = false;
    bool isEnding = false;

    State(QByteArray database, std::function<void()> onThread)
        : path(std::move(database)), begin(std::move(onThread)) {}

    void work() {
        begin();
        Database database(path, Database::Missing::refuse);
        std::unique_lock lock(mutex);
        while (isWanted || !isEnding) {
            if (!isWanted) {
                changed.wait(lock);
                continue;
            }
            isWanted = false;
            isBusy = true;
            lock.unlock();
            database.run("PRAGMA wal_checkpoint(PASSIVE)");
            lock.lock();
            isBusy = false;
            changed.notify_all();
        }
    }
    void end() {
        const std::lock_guard lock(mutex);
        isRunning = isWanted = isBusy = false;
        changed.notify_all();
    }
    template <class Condition>
    void wait(const std::atomic<bool>& stop, Condition isDone) {
        std::unique_lock lock(mutex);
        while (!stop && !isDone())
            changed.wait_for(lock, stopCheckInterval);
    }
};

Checkpointer::Checkpointer(const QByteArray& database, std::function<void()> begin)
    : state_(std::make_shared<State>(database, std::move(begin))) {}

Checkpointer::~Checkpointer() {
    const std::lock_guard lock(state_->mutex);
    state_->isWanted = false;
    state_->isEnding = true;
    state_->changed.notify_all();
}

void Checkpointer::run(const std::atomic<bool>& stop) {
    std::unique_lock lock(state_->mutex);
    state_->isWanted = true;
    state_->changed.notify_all();
    const bool isRunning = std::exchange(state_->isRunning, true);
    lock.unlock();
    if (!isRunning) {
        // What fails is one checkpoint; the log keeps everything.
        foundation::runDetached(
            [state = state_] {
                state->work();
                state->end();
            },
            [state = state_] { state->end(); });
    }
    // Only a log that is wholly in the file is begun anew.
    if (sizeOf(state_->path + "-wal") > longestLog)
        state_->wait(stop, [this] { return !state_->isWanted && !state_->isBusy; });
}

void Checkpointer::finish(const std::atomic<bool>& stop) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->isEnding = true;
        state_->changed.notify_all();
    }
    state_->wait(stop, [this] { return !state_->isRunning; });
}

}  // namespace vell
