#pragma once
// SPDX-License-Identifier: MIT
//
// EventThread: a thread with an event loop for an object that works on disks. Its owner waits for
// its end only so long: a disk that doesn't respond blocks nothing but this thread.
//
// No QThread: one that was waited for may still be freeing its data while the program ends.

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>

class QEventLoop;
class QObject;

namespace vell {

class EventThread {
  public:
    /// Moves the object, which has no parent, to the thread; it is deleted there at the end.
    EventThread(std::unique_ptr<QObject> object, std::chrono::milliseconds exitTimeout);
    /// What was posted and has not begun is dropped.
    ~EventThread();
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /// Calls the function on the thread, after all earlier ones.
    void post(std::function<void()> function);

  private:
    const std::chrono::milliseconds exitTimeout_;
    QEventLoop* loop_ = nullptr;  ///< lives on the thread's stack; none: no thread could be started
    std::future<void> ended_;
    std::thread thread_;
};

}  // namespace vell
