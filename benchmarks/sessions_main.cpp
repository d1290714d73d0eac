// SPDX-License-Identifier: MIT
//
// Measures many files as one chat. Their paths come from standard input, a line each, in the order
// of time: until the pane has painted the newest session and until all are in it, how long the
// window's thread is held up meanwhile, scrolling, and what memory is left after that.
//
//     find archive -name '*anna*' | sort | vell-sessions-benchmark
#include <malloc.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <functional>

#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "app/documents/chat_pane.h"
#include "figures.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"

namespace {

using benchmarks::processorMilliseconds;
using benchmarks::report;

constexpr int jumps = 300;
constexpr int notches = 150;
constexpr int notch = 120;  // pixels

std::vector<QByteArray> readPaths() {
    QFile input;
    std::vector<QByteArray> paths;
    if (!input.open(stdin, QIODevice::ReadOnly)) return paths;
    while (!input.atEnd()) {
        const QByteArray line = input.readLine().trimmed();
        if (!line.isEmpty()) paths.push_back(line);
    }
    return paths;
}

double residentBytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly)) return 0;
    return file.readAll().split(' ').at(1).toDouble() * 4096;
}

/// Processor time of each of many moves of the view, until its frame is painted.
std::vector<double> moveTimes(vell::ChatPane& pane, vell::PictureCache& pictures, int count,
                              const std::function<void(int)>& move) {
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const double start = processorMilliseconds();
        move(i);
        QCoreApplication::sendPostedEvents();
        times.push_back(processorMilliseconds() - start);
        do {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        } while (pictures.isBusy());
    }
    return times;
}

void measureScrolling(vell::ChatPane& pane, vell::PictureCache& pictures) {
    const auto rows = std::ssize(pane.chat().log->events());
    auto& scroller = pane.timeline()->scroller();
    auto times =
        moveTimes(pane, pictures, jumps, [&](int i) { scroller.scrollToRow(rows / jumps * i); });
    report("a jump, median", benchmarks::quantile(times, 0.5), 16, "ms");
    report("a jump, 99 in 100", benchmarks::quantile(times, 0.99), 16, "ms");
    scroller.scrollToRow(rows / 2);
    QCoreApplication::processEvents();
    for (const int direction : {1, -1}) {
        times = moveTimes(pane, pictures, notches,
                          [&](int) { scroller.scrollByPixels(direction * notch); });
        std::puts(direction > 0 ? "to new rows" : "to rows seen before");
        report("a notch, median", benchmarks::quantile(times, 0.5), 4, "ms");
        report("a notch, 99 in 100", benchmarks::quantile(times, 0.99), 8, "ms");
    }
}

}  // namespace

int main(int argc, char** argv) {
    QStandardPaths::setTestModeEnabled(true);
    qputenv("QT_SCALE_FACTOR", "2");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const std::vector<QByteArray> paths = readPaths();
    vell::Settings settings;
    vell::RecentFiles recentFiles;
    vell::ContactsStore contacts;
    vell::PictureCache pictures;
    vell::ChatPane pane({settings, recentFiles, contacts, pictures});
    pane.resize(900, 1000);
    pane.show();
    QCoreApplication::processEvents();

    double shown = 0;
    double shownTime = 0;  // of the processor
    double longest = 0;
    bool isComplete = false;
    QElapsedTimer clock;
    double before = 0;
    QObject::connect(&pane, &vell::ChatPane::shown, &pane, [&] {
        shown = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        shownTime = processorMilliseconds() - before;
    });
    QObject::connect(&pane, &vell::ChatPane::progressed, &pane,
                     [&](qsizetype done, qsizetype all) { isComplete = done == all; });
    clock.start();
    before = processorMilliseconds();
    pane.showSessions(QStringLiteral("Anna"), paths);
    for (int quiet = 0; quiet < 3; quiet += isComplete ? 1 : 0) {
        const double start = processorMilliseconds();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        longest = std::max(longest, processorMilliseconds() - start);
    }
    const auto rows = std::ssize(pane.chat().log->events());
    std::printf("%zu files, %lld rows, complete after %lld ms\n", paths.size(),
                static_cast<long long>(rows), static_cast<long long>(clock.elapsed()));
    report("first frame, by the clock", shown, 300, "ms");
    report("window's thread until then", shownTime, 300, "ms");
    std::printf("window's thread until all files are there: %.0f ms, at most %.0f ms at a time\n",
                processorMilliseconds() - before, longest);

    measureScrolling(pane, pictures);
    report("memory, most", benchmarks::peakBytes() / 1e6, 1500, "MB");
    malloc_trim(0);
    report("memory in the end", residentBytes() / 1e6, 1500, "MB");
    return benchmarks::exitCode();
}
