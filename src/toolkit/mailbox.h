#pragma once
// SPDX-License-Identifier: MIT
//
// Mailbox: lets threads that nobody waits for post to an object of the window thread for as long as
// it lives. The object closes its mailbox first thing when it is destroyed.

#include <QMetaObject>
#include <QObject>
#include <memory>
#include <mutex>
#include <utility>

namespace vell {

class Mailbox {
  public:
    explicit Mailbox(QObject* owner) : owner_(owner) {}
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    /// Runs the function in the owner's thread, later; never once the mailbox is closed.
    template <class Function>
    void post(Function&& function) {
        const std::lock_guard lock(mutex_);
        if (owner_)
            QMetaObject::invokeMethod(owner_, std::forward<Function>(function),
                                      Qt::QueuedConnection);
    }
    void close() {
        const std::lock_guard lock(mutex_);
        owner_ = nullptr;
    }

  private:
    std::mutex mutex_;
    QObject* owner_;
};

}  // namespace vell
