// SPDX-License-Identifier: MIT
#include "app/documents/load_lane.h"

#include <utility>

namespace vell {

void LoadLane::Entrance::post(Priority priority, Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return;
        (priority == Priority::document ? documents_ : summaries_).push_back(std::move(job));
    }
    changed_.notify_one();
}

LoadLane::LoadLane() : thread_([entrance = entrance_] { run(entrance); }) {}

LoadLane::~LoadLane() {
    std::deque<Job> dropped[2];
    {
        const std::lock_guard lock(entrance_->mutex_);
        entrance_->closed_ = true;
        dropped[0].swap(entrance_->documents_);
        dropped[1].swap(entrance_->summaries_);
    }
    entrance_->changed_.notify_one();
    thread_.join();
}

void LoadLane::run(const std::shared_ptr<Entrance>& entrance) {
    for (;;) {
        Job job;
        {
            std::unique_lock lock(entrance->mutex_);
            entrance->changed_.wait(lock, [&] {
                return entrance->closed_ || !entrance->documents_.empty() ||
                       !entrance->summaries_.empty();
            });
            if (entrance->closed_) return;
            auto& queue =
                entrance->documents_.empty() ? entrance->summaries_ : entrance->documents_;
            job = std::move(queue.front());
            queue.pop_front();
        }
        job();
    }
}

}  // namespace vell
