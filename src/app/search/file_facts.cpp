// SPDX-License-Identifier: MIT
#include "app/search/file_facts.h"

#include <QThreadPool>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <utility>

#include "foundation/guarded.h"
#include "foundation/local_path.h"

namespace vell {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds timeout(100);
constexpr int maxThreads = 16;

/// Never deleted: that would wait for threads on a mount that doesn't respond.
QThreadPool& threads() {
    static auto* const pool = [] {
        auto* made = new QThreadPool;
        made->setMaxThreadCount(maxThreads);
        return made;
    }();
    return *pool;
}

FileFacts query(const QString& path) {
    const fs::path name = foundation::pathBytes(foundation::localPath(path)).toStdString();
    std::error_code error;
    const fs::path canonical = fs::canonical(name, error);
    if (error) return {};
    return {true, fs::is_directory(canonical, error),
            foundation::pathFromArgument(canonical.c_str())};
}

/// Shared with threads that may outlive the call.
struct Results {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::optional<FileFacts>> facts;
    size_t missing = 0;

    void set(size_t i, std::optional<FileFacts> result) {
        const std::lock_guard lock(mutex);
        facts[i] = std::move(result);
        if (--missing == 0) changed.notify_all();
    }
};

}  // namespace

std::vector<std::optional<FileFacts>> fileFacts(const QStringList& paths) {
    const auto results = std::make_shared<Results>();
    results->facts.resize(static_cast<size_t>(paths.size()));
    results->missing = results->facts.size();
    for (size_t i = 0; i < results->facts.size(); ++i) {
        // A query that is still queued when the caller has stopped waiting is dropped.
        const std::weak_ptr<Results> weak = results;
        threads().start(foundation::guarded(
            [weak, path = paths[static_cast<qsizetype>(i)], i] {
                if (weak.expired()) return;
                FileFacts facts = query(path);
                if (const auto to = weak.lock()) to->set(i, std::move(facts));
            },
            [weak, i] {
                if (const auto to = weak.lock()) to->set(i, std::nullopt);
            }));
    }
    std::unique_lock lock(results->mutex);
    results->changed.wait_for(lock, timeout, [&] { return results->missing == 0; });
    return results->facts;
}

std::optional<FileFacts> fileFacts(const QString& path) {
    return fileFacts(QStringList{path}).front();
}

}  // namespace vell
