#pragma once
// SPDX-License-Identifier: MIT
//
// CallbackGuard: lets background threads post callbacks to an object of the window thread, which
// may be destroyed before they finish. The object calls close() first in its destructor.

#include <QMetaObject>
#include <QObject>
#include <memory>
#include <mutex>
#include <utility>

namespace vell {

class CallbackGuard {
  public:
    explicit CallbackGuard(QObject* owner) : owner_(owner) {}
    CallbackGuard(const CallbackGuard&) = delete;
    CallbackGuard& operator=(const CallbackGuard&) = delete;

    /// Queues the function on the owner's thread; does nothing once closed.
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
