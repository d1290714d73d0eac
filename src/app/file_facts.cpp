// SPDX-License-Identifier: MIT
#include "app/file_facts.h"

#include <QFileInfo>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "foundation/local_path.h"

namespace vell {
namespace {

constexpr std::chrono::milliseconds patience(100);

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
};

}  // namespace

std::vector<std::optional<FileFacts>> fileFacts(const QStringList& paths) {
    const auto answers = std::make_shared<Answers>();
    answers->facts.resize(static_cast<size_t>(paths.size()));
    answers->missing = answers->facts.size();
    for (qsizetype i = 0; i < paths.size(); ++i) {
        std::thread([answers, path = paths[i], i] {
            FileFacts facts = ask(path);
            const std::lock_guard lock(answers->mutex);
            answers->facts[static_cast<size_t>(i)] = std::move(facts);
            if (--answers->missing == 0) answers->changed.notify_all();
        }).detach();
    }
    std::unique_lock lock(answers->mutex);
    answers->changed.wait_for(lock, patience, [&] { return answers->missing == 0; });
    return answers->facts;
}

std::optional<FileFacts> fileFacts(const QString& path) {
    return fileFacts(QStringList{path}).front();
}

}  // namespace vell
