// SPDX-License-Identifier: MIT
#include "app/search/file_facts.h"

#include <QFileInfo>
#include <QThreadPool>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

#include "foundation/guarded.h"
#include "foundation/local_path.h"

namespace vell {
namespace {

constexpr std::chrono::milliseconds patience(100);
constexpr int mostThreads = 16;

/// Never deleted: nobody waits for a thread on a mount that doesn't answer.
QThreadPool& threads() {
    static auto* const pool = [] {
        auto* made = new QThreadPool;
        made->setMaxThreadCount(mostThreads);
        return made;
    }();
    return *pool;
}

FileFacts ask(const QString& path) {
    const QFileInfo info(foundation::localPath(path));
    return {info.exists(), info.isDir(), info.isReadable(), info.canonicalFilePath()};
}

/// Shared with threads that may outlive the question.
struct Answers {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::optional<FileFacts>> facts;
    size_t missing = 0;

    void set(size_t i, std::optional<FileFacts> answer) {
        const std::lock_guard lock(mutex);
        facts[i] = std::move(answer);
        if (--missing == 0) changed.notify_all();
    }
};

}  // namespace

std::vector<std::optional<FileFacts>> fileFacts(const QStringList& paths) {
    const auto answers = std::make_shared<Answers>();
    answers->facts.resize(static_cast<size_t>(paths.size()));
    answers->missing = answers->facts.size();
    for (size_t i = 0; i < answers->facts.size(); ++i) {
        // What waits for a thread until nobody waits for it any more is dropped then.
        const std::weak_ptr<Answers> asked = answers;
        threads().start(foundation::guarded(
            [asked, path = paths[static_cast<qsizetype>(i)], i] {
                if (asked.expired()) return;
                FileFacts facts = ask(path);
                if (const auto to = asked.lock()) to->set(i, std::move(facts));
            },
            [asked, i] {
                if (const auto to = asked.lock()) to->set(i, std::nullopt);
            }));
    }
    std::unique_lock lock(answers->mutex);
    answers->changed.wait_for(lock, patience, [&] { return answers->missing == 0; });
    return answers->facts;
}

std::optional<FileFacts> fileFacts(const QString& path) {
    return fileFacts(QStringList{path}).front();
}

}  // namespace vell
