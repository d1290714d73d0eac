#pragma once
// SPDX-License-Identifier: MIT
//
// FolderWatch: notices when files appear in a library's folders, vanish from them or are replaced.
// It watches as many folders as the system lets a program watch, on a thread of its own, which
// destruction waits for only briefly. Window thread only.

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "toolkit/event_thread.h"

namespace vell {

class CallbackGuard;
struct LibraryPeople;

class FolderWatch {
  public:
    /// The function is called on the owner's thread, once for changes that come together.
    FolderWatch(QObject* owner, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches the folders, and those below them that files are in, and nothing else.
    void watch(std::shared_ptr<const LibraryPeople> files, std::vector<std::string> folders);
    /// Whether no folder is beyond what can be watched.
    [[nodiscard]] bool isComplete() const { return *isComplete_; }

  private:
    class Worker;
    const std::shared_ptr<CallbackGuard> callbacks_;
    const std::shared_ptr<std::atomic<bool>> isComplete_;
    Worker* worker_;  ///< lives in the thread and dies with it
    std::optional<EventThread> thread_;
};

}  // namespace vell
