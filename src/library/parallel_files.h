#pragma once
// SPDX-License-Identifier: MIT
//
// ParallelFiles: does the same work on many files, one thread for each core, and hands over the
// results in the order in which they are ready. Destroying it waits for no file: the threads end
// after the one at hand.
//
//     ParallelFiles<FileReading> readings(files, [] { return someWork(); });
//     while (auto reading = readings.next(stop)) …

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "foundation/guarded.h"
#include "library/folder_walk.h"
#include "library/pause_switch.h"

namespace vell {

template <class Result, class File = FoundFile>
class ParallelFiles {
  public:
    using Work = std::function<Result(const File&)>;

    /// Each thread makes the work for itself. What a work throws costs that thread's files only.
    /// While the switch is on, if there is one, no further file is begun. `bytes` says what a
    /// result occupies: of those that wait to be taken there are never much more than mostBytes.
    ParallelFiles(std::vector<File> files, const std::function<Work()>& makeWork,
                  std::function<std::size_t(const Result&)> bytes,
                  const std::shared_ptr<const PauseSwitch>& pause = {})
        : state_(std::make_shared<State>()) {
        state_->files = std::move(files);
        state_->bytes = std::move(bytes);
        state_->pause = pause;
        const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
        state_->running = std::min(cores, state_->files.size());
        for (std::size_t i = state_->running; i > 0; --i) {
            foundation::runDetached([state = state_, makeWork] { state->run(makeWork()); },
                                    [state = state_] { state->endThread(); });
        }
    }
    ~ParallelFiles() {
        const std::lock_guard lock(state_->mutex);
        state_->isCancelled = true;
        state_->changed.notify_all();
    }
    ParallelFiles(const ParallelFiles&) = delete;
    ParallelFiles& operator=(const ParallelFiles&) = delete;

    /// Waits for a result. Nothing when there are no more, or once `stop` is set.
    [[nodiscard]] std::optional<Result> next(const std::atomic<bool>& stop) {
        std::unique_lock lock(state_->mutex);
        while (state_->ready.empty() && state_->running > 0 && !stop)
            state_->changed.wait_for(lock, stopCheckInterval);
        if (stop || state_->ready.empty()) return std::nullopt;
        std::optional<Result> result = std::move(state_->ready.front());
        state_->ready.pop_front();
        state_->readyBytes -= state_->bytes(*result);
        state_->changed.notify_all();
        return result;
    }

  private:
    static constexpr std::chrono::milliseconds stopCheckInterval{20};
    static constexpr std::size_t mostBytes = std::size_t{64} << 20;

    struct State {
        std::vector<File> files;
        std::function<std::size_t(const Result&)> bytes;
        std::shared_ptr<const PauseSwitch> pause;
        std::mutex mutex;
        std::condition_variable changed;
        std::size_t nextFile = 0;
        std::deque<Result> ready;
        std::size_t readyBytes = 0;
        std::size_t running = 0;
        bool isCancelled = false;

        void run(const Work& work) {
            std::unique_lock lock(mutex);
            while (!isCancelled && nextFile < files.size()) {
                if (pause && pause->isOn()) {
                    changed.wait_for(lock, stopCheckInterval);
                    continue;
                }
                const File& file = files[nextFile++];
                lock.unlock();
                Result result = work(file);
                lock.lock();
                changed.wait(lock, [this] { return readyBytes < mostBytes || isCancelled; });
                readyBytes += bytes(result);
                ready.push_back(std::move(result));
                changed.notify_all();
            }
            lock.unlock();
            endThread();
        }
        void endThread() {
            const std::lock_guard lock(mutex);
            --running;
            changed.notify_all();
        }
    };
    const std::shared_ptr<State> state_;
};

}  // namespace vell
