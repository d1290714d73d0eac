// SPDX-License-Identifier: MIT
//
// Measures how long it takes to find all matches in a chat of a million messages, and what that
// costs the window's thread. Prints each figure beside its limit and exits with 1 when one is
// exceeded.
//
//     vell-search-benchmark
#include <QCoreApplication>
#include <QEventLoop>
#include <algorithm>
#include <cstdio>

#include "app/documents/find/chat_search.h"
#include "figures.h"
#include "timeline_logs.h"

namespace {

using benchmarks::processorMilliseconds;
using benchmarks::quantile;
using benchmarks::report;

constexpr int repetitions = 5;

struct Times {
    std::vector<double> first;   // until the first match is on the window's thread
    std::vector<double> all;     // of the searching thread
    std::vector<double> window;  // of the window's thread
    qsizetype matches = 0;
};

void searchOnce(vell::ChatSearch& search, const vell::ChatQuery& query, qsizetype row,
                Times& times) {
    const double start = processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    const double windowStart = processorMilliseconds();
    bool isFirst = true;
    const auto found = QObject::connect(&search, &vell::ChatSearch::found, [&] {
        if (std::exchange(isFirst, false))
            times.first.push_back(processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - start);
    });
    search.start(query, row);
    while (search.isRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(found);
    const double window = processorMilliseconds() - windowStart;
    times.window.push_back(window);
    times.all.push_back(processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - start - window);
    times.matches = search.matches()->size();
}

void measure(const benchmarks::Log& log, const char* what, const vell::ChatQuery& query,
             double limit) {
    vell::ChatSearch search(log);
    Times times;
    for (int i = 0; i < repetitions; ++i)
        searchOnce(search, query, std::ssize(log->events()) / 2, times);
    std::printf("%s: %lld matches\n", what, static_cast<long long>(times.matches));
    if (!times.first.empty()) report("  the first match", quantile(times.first, 0.5), 100, "ms");
    report("  all matches", quantile(times.all, 0.5), limit, "ms");
    report("  on the window's thread", quantile(times.window, 0.5), 16, "ms");
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const benchmarks::Log log = benchmarks::plainLog(1'000'000);
    constexpr double limit = 500;
    measure(log, "a word", {QStringLiteral("which"), false, {}, {}}, limit);
    measure(log, "a whole word", {QStringLiteral("the"), false, {.wholeWords = true}, {}}, limit);
    measure(log, "a word that isn’t there", {QStringLiteral("zebra"), false, {}, {}}, limit);
    measure(log, "a pattern", {QStringLiteral("wh[a-z]+ch"), true, {}, {}}, 10 * limit);
    return benchmarks::exitCode();
}
