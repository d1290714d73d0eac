// SPDX-License-Identifier: MIT
#include "app/documents/load_thread.h"

#include <utility>

namespace vell {

void LoadThread::Queue::post(Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return;
        jobs_.push_back(std::move(job));
    }
    changed_.notify_one();
}

LoadThread::LoadThread() : thread_([queue = queue_] { run(queue); }) {}

LoadThread::~LoadThread() {
    std::deque<Job> dropped;
    {
        const std::lock_guard lock(queue_->mutex_);
        queue_->closed_ = true;
        dropped.swap(queue_->jobs_);
    }
    queue_->changed_.notify_one();
    thread_.join();
}

void LoadThread::run(const std::shared_ptr<Queue>& queue) {
    for (;;) {
        Job job;
        {
            std::unique_lock lock(queue->mutex_);
            queue->changed_.wait(lock, [&] { return queue->closed_ || !queue->jobs_.empty(); });
            if (queue->closed_) return;
            job = std::move(queue->jobs_.front());
            queue->jobs_.pop_front();
        }
        job();
    }
}

}  // namespace vell
