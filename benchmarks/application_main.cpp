// SPDX-License-Identifier: MIT
//
// Measures starts of the program against an empty window's, ten long transcripts at once, the
// archive of a large file beside its chat, and the way from a person in the library to the chat
// with them. Prints each figure beside its limit and exits with 1 when one is exceeded. Run it on
// an X display and with QT_QPA_PLATFORM=offscreen.
//
//     vell-application-benchmark
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QMouseEvent>
#include <QProcess>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTreeView>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "app/application.h"
#include "app/desktop/settings.h"
#include "app/documents/chat_pane.h"
#include "app/documents/document_window.h"
#include "app/library/library_window.h"
#include "application_frames.h"
#include "archive.h"
#include "conversations.h"
#include "figures.h"
#include "timeline/timeline_view.h"

namespace {

using namespace Qt::StringLiterals;
using benchmarks::processorMilliseconds;
using benchmarks::quantile;
using benchmarks::report;
using vell::TimelineView;

constexpr int starts = 15;
constexpr int manyMessages = 100'000;
constexpr archive::Sizes librarySize{20'000, 300'000, 0};
constexpr int choices = 5;
constexpr std::size_t sample = 10'000;  // messages, to see how many make a large file
constexpr qsizetype largeBytes = 30'000'000;

struct Start {
    double window = 0;    ///< milliseconds
    double timeline = 0;  ///< milliseconds; 0 where none was waited for
    double memory = 0;    ///< megabytes
};

Start started(const QString& program, const QStringList& arguments, bool waitsForTimeline) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LD_PRELOAD"_s, QStringLiteral(FRAMES_LIBRARY));
    environment.insert(QLatin1String(benchmarks::watchVariable),
                       waitsForTimeline ? u"timeline"_s : u"window"_s);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.waitForFinished(60'000);
    for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
        const auto words = line.split(' ');
        if (words.front() == QByteArray("frames"))
            return {words[1].toDouble(), words[2].toDouble(), words[3].toDouble() / 1024};
    }
    qFatal("%s told nothing: %s", qPrintable(program), process.readAllStandardError().constData());
}

/// Each program in turn, so that what else the machine does meets all alike.
void measureStarts(const QString& small, const QString& large) {
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString vell = programs.filePath(u"vell"_s);
    const QString other = programs.filePath(u"vell-application-empty"_s);
    std::vector<double> bare, empty, window, timeline, memory, largeWindow, largeExtra;
    for (int i = 0; i < starts; ++i) {
        bare.push_back(started(other, {}, false).window);
        empty.push_back(started(other, {u"furnished"_s}, false).window);
        const Start opened = started(vell, {u"--new-instance"_s, small}, true);
        window.push_back(opened.window);
        timeline.push_back(opened.timeline);
        memory.push_back(opened.memory);
        const Start many = started(vell, {u"--new-instance"_s, large}, true);
        largeWindow.push_back(many.window);
        largeExtra.push_back(many.timeline - opened.timeline);
    }
    const auto median = [](const std::vector<double>& values) { return quantile(values, 0.5); };
    std::printf(
        "a bare window %.1f ms, an empty main window %.1f ms, a chat's window %.1f ms, "
        "with the chat in it %.1f ms\n",
        median(bare), median(empty), median(window), median(timeline));
    std::printf("start to the first frame / a bare window's %.2f\n", median(window) / median(bare));
    report("start to the first frame / an empty main window's", median(window) / median(empty), 1.5,
           "");
    report("peak memory with a small chat", median(memory), 80, "MB");
    report("100,000 messages: window / a small chat's", median(largeWindow) / median(window), 1.25,
           "");
    report("100,000 messages: timeline later than a small chat's", median(largeExtra), 250, "ms");
}

void processEvents(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(milliseconds))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

/// Processor time of the window thread for one notch of the wheel and what it paints.
double notch(TimelineView& view) {
    const QPointF place(100, 100);
    QWheelEvent event(place, view.viewport()->mapToGlobal(place), QPoint(0, -60), {}, Qt::NoButton,
                      Qt::NoModifier, Qt::ScrollUpdate, false);
    const double before = processorMilliseconds();
    QCoreApplication::sendEvent(view.viewport(), &event);
    view.viewport()->repaint();
    return processorMilliseconds() - before;
}

double jump(TimelineView& view, double part) {
    QScrollBar* bar = view.verticalScrollBar();
    const double before = processorMilliseconds();
    bar->setValue(static_cast<int>(part * bar->maximum()));
    view.viewport()->repaint();
    return processorMilliseconds() - before;
}

void measureManyWindows(const QStringList& files) {
    vell::Application program;
    QElapsedTimer timer;
    timer.start();
    program.open(files);
    const auto isLoaded = [](const QWidget* window) {
        return static_cast<const vell::DocumentWindow*>(window)->isLoaded();
    };
    double longest = 0;
    while (!std::ranges::all_of(program.documentWindows(), isLoaded)) {
        const double before = processorMilliseconds();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        longest = std::max(longest, processorMilliseconds() - before);
    }
    std::printf("ten windows of 100,000 messages are there after %lld ms\n",
                static_cast<long long>(timer.elapsed()));
    report("ten windows: longest hold-up of the window thread meanwhile", longest, 100, "ms");
    processEvents(2000);

    std::vector<double> notches, jumps;
    for (const QWidget* window : program.documentWindows()) {
        auto* view = window->findChild<TimelineView*>();
        for (int i = 0; i < 20; ++i)
            notch(*view);  // warms the caches
        for (int i = 0; i < 100; ++i) {
            notches.push_back(notch(*view));
            QCoreApplication::processEvents();
        }
        for (const double part : {1.0, 0.5, 0.0})
            jumps.push_back(jump(*view, part));
    }
    report("ten windows: scroll step, median", quantile(notches, 0.5), 4, "ms");
    report("ten windows: scroll step, 99th percentile", quantile(notches, 0.99), 8, "ms");
    report("ten windows: jump, worst", quantile(jumps, 1), 16, "ms");
    std::printf("peak memory with ten windows %.0f MB\n", benchmarks::peakBytes() / 1e6);
    program.quit();
}

/// From the command to the tree's first frame, in the window of a loaded chat.
void measureArchive(const QString& file, const char* form) {
    vell::Application program;
    program.open({file});
    auto* window = static_cast<vell::DocumentWindow*>(program.documentWindows().front());
    while (!window->isLoaded())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    processEvents(1000);
    const auto actions = window->findChildren<QAction*>();
    const auto show = std::ranges::find(actions, u"Show A&rchive"_s, &QAction::text);
    QElapsedTimer clock;
    clock.start();
    const double before = processorMilliseconds();
    (*show)->trigger();
    const auto* tree = window->findChild<QTreeView*>(u"archiveView"_s);
    while (!tree->model() || tree->model()->rowCount() == 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    tree->viewport()->repaint();
    std::printf("the archive of %lld MB, %s\n", QFileInfo(file).size() / 1'000'000, form);
    report("  to its first frame, by the clock", static_cast<double>(clock.nsecsElapsed()) / 1e6,
           100, "ms");
    report("  the window's thread until then", processorMilliseconds() - before, 100, "ms");
    program.quit();
}

void click(const QListView& list, const QString& name) {
    const auto found = list.model()->match(list.model()->index(0, 0), Qt::DisplayRole, name);
    if (found.isEmpty()) qFatal("%s isn't listed", qPrintable(name));
    const QPointF at = list.visualRect(found.front()).center();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, at, list.viewport()->mapToGlobal(at), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list.viewport(), &event);
    }
}

/// A person of 3,300 files: two addresses, each of which has a twelfth of the archive.
void measureLibrary(const QString& chats) {
    archive::write(chats, librarySize);
    vell::Settings().setLibraryAliases({u"joined AIM:haruka AIM:jun"_s});
    vell::Application program;
    program.addToLibrary({chats});
    vell::LibraryWindow* window = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets())
        window = window ? window : qobject_cast<vell::LibraryWindow*>(each);
    auto& people = *window->findChild<QListView*>(u"libraryPeople"_s);
    auto& pane = *window->findChild<vell::ChatPane*>();
    const auto* state = window->findChild<QLabel*>(u"libraryState"_s);
    while (!state->text().contains(u"conversations"_s))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::vector<double> clocks, times;
    QElapsedTimer clock;
    double before = 0;
    qsizetype files = 0;
    QObject::connect(&pane, &vell::ChatPane::shown, &pane, [&] {
        if (!clock.isValid()) return;
        clocks.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        times.push_back(processorMilliseconds() - before);
        clock.invalidate();
    });
    QObject::connect(&pane, &vell::ChatPane::progressed, &pane,
                     [&](qsizetype, qsizetype all) { files = std::max(files, all); });
    for (int i = 0; i < choices; ++i) {
        click(people, u"karim"_s);
        processEvents(3000);
        clock.start();
        before = processorMilliseconds();
        click(people, u"haruka"_s);
        processEvents(3000);
    }
    std::printf("%lld files with a person\n", static_cast<long long>(files));
    report("library: from a click on a person to the first frame, by the clock, worst",
           quantile(clocks, 1), 300, "ms");
    report("  the window's thread until then, worst", quantile(times, 1), 300, "ms");
    program.quit();
}

QString written(const QTemporaryDir& folder, const QString& name, const QByteArray& bytes) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s can't be written", qPrintable(file.fileName()));
    return file.fileName();
}

}  // namespace

int main(int argc, char** argv) {
    const QTemporaryDir home;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "HOME"})
        qputenv(variable, home.path().toUtf8());
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"vell-application-benchmark"_s);
    std::printf("platform %s\n", qPrintable(QGuiApplication::platformName()));
    const QByteArray many = benchmarks::conversation(manyMessages, benchmarks::Form::keyed);
    QStringList files;
    for (int i = 0; i < 10; ++i)
        files.append(written(home, u"many %1.ichat"_s.arg(i), many));
    measureStarts(
        written(home, u"few.ichat"_s, benchmarks::conversation(20, benchmarks::Form::keyed)),
        files.front());
    measureManyWindows(files);
    using benchmarks::Form;
    for (const auto& [form, name] :
         {std::pair(Form::keyed, "keyed"), std::pair(Form::nonKeyed, "non-keyed")}) {
        const auto messages = [form = form](qsizetype bytes) {
            return sample * static_cast<std::size_t>(bytes) /
                   static_cast<std::size_t>(benchmarks::conversation(sample, form).size());
        };
        measureArchive(
            written(home, u"large.ichat"_s, benchmarks::conversation(messages(largeBytes), form)),
            name);
    }
    measureLibrary(QDir(home.path()).canonicalPath() + u"/chats"_s);
    return benchmarks::exitCode();
}
