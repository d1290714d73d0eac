#pragma once
// SPDX-License-Identifier: MIT
//
// LoadThread: one thread on which transcripts are converted one after the other, because the load
// log they write is one. Opened documents go before the summaries that the search window asks for.

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace vell {

class LoadThread {
  public:
    /// Reports its own failure and throws nothing.
    using Job = std::function<void()>;
    enum class Priority { document, summary };

    /// Where jobs are posted, by threads that may outlive the load thread; jobs posted after its
    /// end are dropped.
    class Queue {
      public:
        void post(Priority priority, Job job);

      private:
        friend class LoadThread;
        std::mutex mutex_;
        std::condition_variable changed_;
        std::deque<Job> documents_;
        std::deque<Job> summaries_;
        bool closed_ = false;
    };

    LoadThread();
    /// Drops what has not begun and waits for the job that has.
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
