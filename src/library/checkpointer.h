#pragma once
// SPDX-License-Identifier: MIT
//
// Checkpointer: moves what was committed from a database's log into its file, on a thread of its
// own that may wait for the disk, while the next transaction is being written. Destroying it waits
// for nothing.

#include <QByteArray>
#include <atomic>
#include <functional>
#include <memory>

namespace vell {

class Checkpointer {
  public:
    /// `begin` is called on the thread first.
    Checkpointer(const QByteArray& database, std::function<void()> begin);
    ~Checkpointer();
    Checkpointer(const Checkpointer&) = delete;
    Checkpointer& operator=(const Checkpointer&) = delete;

    /// After a transaction. Returns at once, unless the log has become very long.
    void run(const std::atomic<bool>& stop);
    /// Waits until all is in the file and the thread has closed it, or until `stop` is set.
    void finish(const std::atomic<bool>& stop);

  private:
    struct State;
    const std::shared_ptr<State> state_;
};

}  // namespace vell
