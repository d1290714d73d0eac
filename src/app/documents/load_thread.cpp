// SPDX-License-Identifier: MIT
#include "app/documents/load_thread.h"

#include <utility>

namespace vell {

void LoadThread::Queue::post(Priority priority, Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return;
        (priority == Priority::document ? documents_ : summaries_).push_back(std::move(job));
    }
    changed_.notify_one();
}

LoadThread::LoadThread() : thread_([queue = queue_] { run(queue); }) {}

LoadThread::~LoadThread() {
    std::deque<Job> dropped[2];
    {
        const std::lock_guard lock(queue_->mutex_);
        queue_->closed_ = true;
        dropped[0].swap(queue_->documents_);
        dropped[1].swap(queue_->summaries_);
    }
    queue_->changed_.notify_one();
    thread_.join();
}

void LoadThread::run(const std::shared_ptr<Queue>& queue) {
    for (;;) {
        Job job;
        {
            std::unique_lock lock(queue->mutex_);
            queue->changed_.wait(lock, [&] {
                return queue->closed_ || !queue->documents_.empty() || !queue->summaries_.empty();
            });
            if (queue->closed_) return;
            auto& jobs = queue->documents_.empty() ? queue->summaries_ : queue->documents_;
            job = std::move(jobs.front());
            jobs.pop_front();
        }
        job();
    }
}

}  // namespace vell
