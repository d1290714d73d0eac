#pragma once
// SPDX-License-Identifier: MIT
//
// LoadThread: converts transcripts one after the other, because they share one load log.

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace vell {

class LoadThread {
  public:
    /// Reports its own failure and never throws.
    using Job = std::function<void()>;

    /// For threads that may outlive the load thread: jobs posted after its end are dropped.
    class Queue {
      public:
        void post(Job job);

      private:
        friend class LoadThread;
        std::mutex mutex_;
        std::condition_variable changed_;
        std::deque<Job> jobs_;
        bool closed_ = false;
    };

    LoadThread();
    /// Drops jobs that have not begun and waits for the one that has.
    ~LoadThread();
    LoadThread(const LoadThread&) = delete;
    LoadThread& operator=(const LoadThread&) = delete;

    [[nodiscard]] const std::shared_ptr<Queue>& queue() const { return queue_; }

  private:
    static void run(const std::shared_ptr<Queue>& queue);

    std::shared_ptr<Queue> queue_ = std::make_shared<Queue>();
    std::thread thread_;
};

}  // namespace vell
