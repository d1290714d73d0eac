// SPDX-License-Identifier: MIT
#include "app/library/indexing.h"

#include <QElapsedTimer>
#include <QFile>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <utility>

#include "foundation/guarded.h"
#include "foundation/local_path.h"
#include "toolkit/callback_guard.h"

namespace vell {
namespace {

constexpr qint64 indexReportInterval = 100;  // milliseconds

}  // namespace

/// What the thread shares with the window thread.
struct Indexing::Run : std::enable_shared_from_this<Indexing::Run> {
    explicit Run(QObject* owner) : callbacks(owner) {}

    CallbackGuard callbacks;
    std::atomic<bool> isStopped = false;
    std::mutex mutex;
    Indexer* indexer = nullptr;  // while it runs
    bool isPaused = false;
    Indexer::Priority priority = Indexer::Priority::background;

    State state;
    QElapsedTimer sinceReport;

    void setPaused(bool paused) {
        const std::lock_guard lock(mutex);
        isPaused = paused;
        if (indexer) indexer->setPaused(paused);
    }
    void carryOut(const QByteArray& database, const QStringList& folders, const Callbacks& told,
                  End& end);
    void index(LibraryStore& store, const End& end, const Callbacks& told);
    void report(const Callbacks& told, bool isUrgent);
};

void Indexing::Run::report(const Callbacks& told, bool isUrgent) {
    if (!isUrgent && sinceReport.isValid() && sinceReport.elapsed() < indexReportInterval) return;
    sinceReport.start();
    callbacks.post([on = told.onState, state = state] { on(state); });
}

void Indexing::Run::index(LibraryStore& store, const End& end, const Callbacks& told) {
    Indexer running(store, priority);
    running.onFound = [this, &told](qsizetype count) {
        state.found = count;
        report(told, false);
    };
    running.onProgress = [this, &told](const Indexer::Progress& progress) {
        state.progress = progress;
        report(told, progress.done == progress.all);
    };
    running.onCommitted = [this, &told] { callbacks.post(told.onCommitted); };
    {
        const std::lock_guard lock(mutex);
        indexer = &running;
        running.setPaused(isPaused);
    }
    const auto forget = [this](void*) {
        const std::lock_guard lock(mutex);
        indexer = nullptr;
    };
    const std::unique_ptr<Indexer, decltype(forget)> registered(&running, forget);
    running.update(end.folders, isStopped);
}

void Indexing::Run::carryOut(const QByteArray& database, const QStringList& folders,
                             const Callbacks& told, End& end) {
    for (const QString& folder : folders) {
        std::error_code error;
        const auto canonical =
            std::filesystem::canonical(foundation::pathBytes(folder).toStdString(), error);
        if (error)
            end.missing.append(folder);
        else
            end.folders.push_back(canonical.native());
    }
    try {
        LibraryStore store(database);
        end.wasDamaged = store.wasDamaged();
        // Stores that read find a database from now on.
        callbacks.post(told.onCommitted);
        try {
            index(store, end, told);
        } catch (const DatabaseError& error) {
            if (error.kind() != DatabaseError::Kind::damaged) throw;
            end.wasDamaged = true;
            store.startAnew();
            index(store, end, told);
        }
    } catch (const StoreRefusal& refusal) {
        end.refusal = refusal.reason;
    } catch (const DatabaseError& error) {
        end.isLocked = error.kind() == DatabaseError::Kind::locked;
        end.refusal = QString::fromUtf8(error.what());
    }
}

Indexing::Indexing(QByteArray database, QObject* owner, Callbacks callbacks)
    : database_(std::move(database)), owner_(owner), callbacks_(std::move(callbacks)) {}

Indexing::~Indexing() {
    if (!run_) return;
    stopRun();
    run_->callbacks.close();
}

void Indexing::start(const QStringList& folders, Indexer::Priority priority) {
    folders_ = folders;
    priority_ = priority;
    isWantedAgain_ = run_ != nullptr;
    if (!run_) begin();
}

void Indexing::restart(const QStringList& folders, Indexer::Priority priority) {
    if (run_) stopRun();
    start(folders, priority);
}

void Indexing::stopRun() {
    run_->isStopped = true;
}

void Indexing::setPaused(bool isPaused) {
    isPaused_ = isPaused;
    if (run_) run_->setPaused(isPaused);
}

void Indexing::begin() {
    run_ = std::make_shared<Run>(owner_);
    run_->isPaused = isPaused_;
    run_->priority = priority_;
    const auto end = [this, run = run_](const End& end) {
        run->callbacks.post([this, end] {
            const auto ended = std::exchange(run_, nullptr);
            if (!ended->isStopped) callbacks_.onEnd(end);
            if (std::exchange(isWantedAgain_, false)) begin();
        });
    };
    foundation::runDetached(
        [run = run_, database = database_, folders = folders_, told = callbacks_, end] {
            End result;
            run->carryOut(database, folders, told, result);
            end(result);
        },
        [end] {
            end({QStringLiteral("there isn’t enough memory"), false, false, {}, {}});
        });
}

}  // namespace vell
