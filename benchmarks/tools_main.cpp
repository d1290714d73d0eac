// SPDX-License-Identifier: MIT
//
// Measures what a document window offers beside its timeline: processor time of the window's thread
// from the command to the frame that shows the result, at 900 by 1000 points and two pixels a
// point. Threads of their own read the chat and decode pictures meanwhile.
//
//     vell-tools-benchmark
#include <QApplication>
#include <QCalendarWidget>
#include <QMainWindow>
#include <QMenu>
#include <QStandardPaths>
#include <QTabBar>
#include <QTableView>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "app/documents/chat_tools.h"
#include "app/documents/jump_history.h"
#include "app/documents/selection_data.h"
#include "app/documents/services.h"
#include "figures.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/timeline_view.h"
#include "timeline_logs.h"

namespace {

using benchmarks::Log;
using benchmarks::processorMilliseconds;
using benchmarks::quantile;
using benchmarks::report;
using vell::TesselChatLog;

/// Years of chatting, 250 messages on each day.
Log manyDays(qsizetype messages) {
    const vell::TesselUserID ann{{QStringLiteral("AIM")}, QStringLiteral("ann")};
    const vell::SharedUserID sender(ann);
    std::vector<TesselChatLog::Event> events;
    const auto add = [&](double second, const vell::SharedUserID& by,
                         TesselChatLog::Event::Value value) {
        events.push_back({static_cast<qint64>(events.size()) + 1, foundation::Date{second}, by,
                          std::move(value)});
    };
    for (qsizetype i = 0; i < messages; ++i) {
        const double second = static_cast<double>(i / 250) * 86400 + static_cast<double>(i % 250);
        if (i % 250 == 0) add(second, {}, TesselChatLog::NewDay());
        add(second, sender, TesselChatLog::PlainText{QStringLiteral("some words")});
    }
    return std::make_shared<const TesselChatLog>(ann.serviceID, ann, QSet<vell::TesselUserID>(),
                                                 std::move(events));
}

class Window {
  public:
    explicit Window(const Log& log) {
        auto* view = new vell::TimelineView(log, contacts_, pictures_);
        window_.setCentralWidget(view);
        window_.resize(900, 1000);
        history_.attach(*view);
        tools_ = new vell::ChatTools(
            window_, vell::Services{settings_, recentFiles_, contacts_, pictures_}, history_);
        go_ = tools_->addGoCommands(menu_);
        show_ = tools_->addViewCommands(menu_);
        tools_->setTimeline(*view);
        window_.show();
        window_.grab();
        QCoreApplication::processEvents();
    }
    /// Of the first command in the menu, until the condition holds and all is painted.
    static double cost(QAction& command, const std::function<bool()>& isDone) {
        const double start = processorMilliseconds();
        command.trigger();
        while (!isDone())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        QCoreApplication::processEvents();
        return processorMilliseconds() - start;
    }
    double openCalendar() {
        return cost(*go_[0], [this] {
            const auto* calendar = window_.findChild<QCalendarWidget*>();
            return calendar && calendar->minimumDate().year() == 2001;
        });
    }
    double openPane() {
        return cost(*show_[0], [this] {
            for (const auto* table : window_.findChildren<QTableView*>())
                if (table->model()->rowCount() > 1) return true;
            return false;
        });
    }

  private:
    vell::Settings settings_;
    vell::RecentFiles recentFiles_;
    vell::ContactsStore contacts_;
    vell::PictureCache pictures_;
    vell::JumpHistory history_;
    QMenu menu_;
    QMainWindow window_;
    vell::ChatTools* tools_ = nullptr;
    QList<QAction*> go_;
    QList<QAction*> show_;
};

/// What copying a whole chat takes at once, and its text once a program asks for it.
void reportCopying(const Log& log) {
    const vell::ContactsStore contacts;
    // As large as its texts would be in a file.
    const vell::ShownChat chat{
        log, std::make_shared<const vell::ExpansionBound>(*log), 100'000'000, {}};
    vell::TextSpan all;
    all.to.row = static_cast<qsizetype>(log->events().size()) - 1;
    all.to.offset = std::numeric_limits<int>::max();
    std::vector<double> times;
    for (int i = 0; i < 5; ++i) {
        const double start = processorMilliseconds();
        const vell::SelectionData data(chat, contacts, all);
        if (data.isOutOfProportion() || data.count() < 1'000'000) std::abort();
        times.push_back(processorMilliseconds() - start);
    }
    report("copying 1,000,000 messages", quantile(times, 0.5), 16);
}

/// The first one loads what the process needs only once.
void reportOpenings(const char* first, const char* later, const Log& log, double (Window::*open)(),
                    double limit) {
    std::vector<double> times;
    for (int i = 0; i < 6; ++i) {
        Window window(log);
        times.push_back((window.*open)());
    }
    report(first, times.front(), limit);
    times.erase(times.begin());
    report(later, quantile(times, 0.5), limit);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "2");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    reportOpenings("calendar of 1,000,000 messages, first", "calendar of 1,000,000 messages, later",
                   manyDays(1'000'000), &Window::openCalendar, 50);
    reportOpenings("pane of 10,000 pictures, first", "pane of 10,000 pictures, later",
                   benchmarks::pictureLog(10'000, 16), &Window::openPane, 16);
    reportCopying(manyDays(1'000'000));
    return benchmarks::exitCode();
}
