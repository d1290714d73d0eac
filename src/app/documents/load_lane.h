#pragma once
// SPDX-License-Identifier: MIT
//
// LoadLane: one thread on which transcripts are converted one after the other, because the load log
// they write is one. Opened documents go before the summaries that the search window asks for.

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace vell {

class LoadLane {
  public:
    /// Reports its own failure and throws nothing.
    using Job = std::function<void()>;
    enum class Priority { document, summary };

    /// The entrance, for threads that may outlive the lane: jobs posted after its end are dropped.
    class Entrance {
      public:
        void post(Priority priority, Job job);

      private:
        friend class LoadLane;
        std::mutex mutex_;
        std::condition_variable changed_;
        std::deque<Job> documents_;
        std::deque<Job> summaries_;
        bool closed_ = false;
    };

    LoadLane();
    /// Drops what has not begun and waits for the job that has.
    ~LoadLane();
    LoadLane(const LoadLane&) = delete;
    LoadLane& operator=(const LoadLane&) = delete;

    [[nodiscard]] const std::shared_ptr<Entrance>& entrance() const { return entrance_; }

  private:
    static void run(const std::shared_ptr<Entrance>& entrance);

    std::shared_ptr<Entrance> entrance_ = std::make_shared<Entrance>();
    std::thread thread_;
};

}  // namespace vell
