#pragma once
// SPDX-License-Identifier: MIT
//
// SessionReader: reads the files of a merged chat in the background, the one that is to be seen
// first and its neighbours before all others, which are read on all cores. It hands over the chat
// again and again as it grows.

#include <QByteArray>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "library/merged_chat.h"

namespace vell {

class SessionReader {
  public:
    struct Failure {
        QByteArray path;
        QString reason;
    };
    struct Result {
        MergedChat chat;
        qsizetype fileSize = 0;  ///< of the files in it, in bytes
        qsizetype done = 0;      ///< files that were read, or can't be
        qsizetype all = 0;
        std::vector<Failure> failures;
    };
    /// Called on threads of the reader's.
    using Take = std::function<void(Result result)>;

    /// Begins at once. `first` is an index into the paths. The last result has all files done.
    SessionReader(std::vector<QByteArray> paths, std::size_t first, foundation::Calendar calendar,
                  Take take);
    /// Stops without waiting.
    ~SessionReader();
    SessionReader(const SessionReader&) = delete;
    SessionReader& operator=(const SessionReader&) = delete;

  private:
    const std::shared_ptr<std::atomic<bool>> stop_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace vell
