#pragma once
// SPDX-License-Identifier: MIT
//
// Indexing: runs an indexer on a detached thread and tells the window thread how far it is. One run
// at a time; what is asked for meanwhile begins after it. Destroying it stops the run and waits for
// nothing.

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "library/indexer.h"

namespace vell {

class Indexing {
  public:
    struct State {
        qsizetype found = 0;  ///< while the folders are looked through
        Indexer::Progress progress;
        bool isPaused = false;
    };
    struct End {
        /// Why the index can't be used; empty when it can.
        QString refusal;
        bool isLocked = false;             ///< another program is indexing
        bool wasDamaged = false;           ///< and is made again
        QStringList missing;               ///< folders that aren't there
        std::vector<std::string> folders;  ///< the others, as the file system has them
    };
    struct Callbacks {
        std::function<void(const State&)> onState;
        /// More can be found from now on.
        std::function<void()> onCommitted;
        std::function<void(const End&)> onEnd;
    };

    /// The callbacks are called on the owner's thread.
    Indexing(QByteArray database, QObject* owner, Callbacks callbacks);
    ~Indexing();
    Indexing(const Indexing&) = delete;
    Indexing& operator=(const Indexing&) = delete;

    void start(const QStringList& folders, Indexer::Priority priority);
    /// Ends a run before that one begins.
    void restart(const QStringList& folders, Indexer::Priority priority);
    void setPaused(bool isPaused);

  private:
    struct Run;
    void begin();
    void stopRun();

    const QByteArray database_;
    QObject* const owner_;
    const Callbacks callbacks_;
    QStringList folders_;
    Indexer::Priority priority_ = Indexer::Priority::background;
    bool isWantedAgain_ = false;
    bool isPaused_ = false;
    std::shared_ptr<Run> run_;  // null while nothing runs
};

}  // namespace vell
