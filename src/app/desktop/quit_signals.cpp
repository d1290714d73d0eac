// SPDX-License-Identifier: MIT
#include "app/desktop/quit_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#endif

namespace vell {

#ifdef Q_OS_UNIX
namespace {

constexpr int quitSignals[] = {SIGHUP, SIGINT, SIGTERM};

// A signal handler may do very little: it writes to a pipe that the event loop watches.
int ends[2] = {-1, -1};

void notify(int) {
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(ends[1], &byte, 1);
}

}  // namespace

QuitSignals::QuitSignals(QObject* parent) : QObject(parent) {
    if (::pipe(ends) != 0) return;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    notifier_ = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] {
        notifier_->setEnabled(false);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = notify;
    action.sa_flags = SA_RESTART | SA_RESETHAND;  // the second one ends the program at once
    for (const int signal : quitSignals)
        ::sigaction(signal, &action, nullptr);
}

QuitSignals::~QuitSignals() {
    if (!notifier_) return;
    for (const int number : quitSignals)
        ::signal(number, SIG_DFL);
    delete notifier_;
    ::close(ends[0]);
    ::close(ends[1]);
}
#else
QuitSignals::QuitSignals(QObject* parent) : QObject(parent) {}
QuitSignals::~QuitSignals() = default;
#endif

}  // namespace vell
