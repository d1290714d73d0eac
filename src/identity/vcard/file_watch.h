#pragma once
// SPDX-License-Identifier: MIT
//
// FileWatch: notices when contact files are edited, added, removed or replaced. It accesses disks
// on a thread of its own, and destruction waits for that only briefly. May be used from any thread.

#include <QStringList>
#include <functional>
#include <memory>

#include "identity/vcard/contact_files.h"
#include "toolkit/event_thread.h"

namespace vell {

class FileWatch {
  public:
    /// The function is called on the watch's thread, once for changes that come together. It must
    /// stay callable for a short time after the watch is destroyed.
    explicit FileWatch(std::function<void()> changed);
    ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    /// Watches what was found for these paths from now on. A change since it was found counts.
    void watch(const QStringList& paths, const ContactFiles& found);

  private:
    class Worker;
    explicit FileWatch(std::unique_ptr<Worker> worker);
    Worker* worker_;  ///< lives in the thread and dies with it
    EventThread thread_;
};

}  // namespace vell
