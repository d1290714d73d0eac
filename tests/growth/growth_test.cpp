// SPDX-License-Identifier: MIT
//
// Whatever a file contains, a file of twice the size costs about twice as much: loaded, and written
// in each format. Refusing it is cheap, and right where a format would write many times over what
// the file stores once.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <functional>

#include "foundation/error.h"
#include "recovery/recovery.h"
#include "transcript/chat_log.h"
#include "writers/hostile/hostile_files.h"

namespace vell::test {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype fileSize = 150'000;
constexpr double mebibyte = 1 << 20;

struct Cost {
    double seconds = 0;  ///< of the processor
    double peak = 0;     ///< bytes
    bool isRefused = false;
};

/// The cost of the task, which returns whether it was refused, in a process of its own.
Cost costOf(const std::function<bool()>& task) {
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        _exit(task() ? 1 : 0);
    }
    int status = 0;
    rusage used{};
    EXPECT_EQ(wait4(child, &status, 0, &used), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 2) << status;
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {seconds(used.ru_utime) + seconds(used.ru_stime),
            static_cast<double>(used.ru_maxrss) * 1024, WEXITSTATUS(status) == 1};
}

bool load(const QByteArray& path) {
    try {
        (void)TesselChatLog::fromFile(QString::fromUtf8(path), *foundation::Calendar::named("UTC"));
        return false;
    } catch (const foundation::Error&) {
        return true;
    }
}

bool recover(const QByteArray& path) {
    QFile file(QString::fromUtf8(path));
    return !file.open(QIODevice::ReadOnly) ||
           !recovery::recoverChatLog(foundation::Data(file.readAll()), std::nullopt,
                                     *foundation::Calendar::named("UTC"));
}

bool exportAs(const char* format, const QByteArray& path) {
    execl(VELL_EXPORT, VELL_EXPORT, "--format", format, path.constData(), nullptr);
    return _exit(127), true;
}

QByteArray writeFile(const QTemporaryDir& folder, const char* name, const QByteArray& bytes) {
    QFile file(folder.filePath(QString::fromUtf8(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    return file.fileName().toUtf8();
}

TEST(Growth, LogsStayInProportionToTheirFiles) {
    const QTemporaryDir folder;
    for (const writers::HostileFile& log : writers::multipliedLogs()) {
        SCOPED_TRACE(log.name);
        const QByteArray path = writeFile(folder, "log", log.make(3 << 20));
        const Cost cost = costOf([&] { return load(path); });
        EXPECT_EQ(cost.isRefused, log.isRefused);
#if !defined(__SANITIZE_ADDRESS__)
        const auto size = static_cast<double>(QFileInfo(QString::fromUtf8(path)).size());
        EXPECT_LT(cost.peak, size * 24 + 160 * mebibyte);
#endif
    }
}

TEST(Growth, CostsTwiceForTwiceTheSize) {
    const std::pair<const char*, std::function<bool(const QByteArray&)>> tasks[] = {
        {"recover", recover},
        {"load", load},
        {"archive", [](const QByteArray& path) { return exportAs("archive", path); }},
        {"json", [](const QByteArray& path) { return exportAs("json", path); }},
        {"markdown", [](const QByteArray& path) { return exportAs("markdown", path); }},
        {"text", [](const QByteArray& path) { return exportAs("text", path); }},
    };
    const QTemporaryDir folder;
    for (const writers::HostileFile& hostile : writers::hostileFiles()) {
        const QByteArray paths[] = {writeFile(folder, "once", hostile.make(fileSize)),
                                    writeFile(folder, "twice", hostile.make(2 * fileSize))};
        for (const auto& [name, task] : tasks) {
            SCOPED_TRACE(testing::Message() << hostile.name << ", " << name);
            Cost once{1e9};
            Cost twice{1e9};
            // Other work on the machine only adds to it: the least of three tries counts.
            const auto isTooMuch = [&] { return twice.seconds > 3 * once.seconds + 0.05; };
            for (int i = 0; i < 3 && (i == 0 || isTooMuch()); ++i) {
                const auto cost = [&, run = &task](std::size_t n) {
                    return costOf([&] { return (*run)(paths[n]); });
                };
                once.seconds = std::min(once.seconds, cost(0).seconds);
                const Cost latest = cost(1);
                twice = {std::min(twice.seconds, latest.seconds), latest.peak, latest.isRefused};
            }
            const bool isLoading = name == tasks[1].first;
            EXPECT_TRUE(!isLoading || twice.isRefused == hostile.isRefused);
            EXPECT_FALSE(isTooMuch()) << once.seconds << " s, then " << twice.seconds;
#if !defined(__SANITIZE_ADDRESS__)
            EXPECT_LT(twice.peak, 2 * fileSize * 32 + 160 * mebibyte);
#endif
            if (qEnvironmentVariableIsSet("VELL_SHOW_COSTS"))
                printf("%-42s %-9s %6.2f s %6.2f s %5.0f MB%s\n", hostile.name, name, once.seconds,
                       twice.seconds, twice.peak / 1e6, twice.isRefused ? ", refused" : "");
            // No format can add to what isn't read.
            if (isLoading && hostile.isRefused) break;
        }
    }
}

}  // namespace
}  // namespace vell::test
