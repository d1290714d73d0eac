// SPDX-License-Identifier: MIT
#include "toolkit/event_thread.h"

#include <QEventLoop>
#include <QThread>
#include <system_error>
#include <utility>

namespace vell {
namespace {

struct Started {
    QThread* thread;
    QEventLoop* loop;
};

}  // namespace

EventThread::EventThread(std::unique_ptr<QObject> object, std::chrono::milliseconds exitTimeout)
    : exitTimeout_(exitTimeout) {
    QObject* const moved = object.get();
    std::promise<Started> starting;
    std::promise<void> ending;
    std::future<Started> started = starting.get_future();
    ended_ = ending.get_future();
    try {
        thread_ = std::thread([object = std::move(object), starting = std::move(starting),
                               ending = std::move(ending)]() mutable {
            {
                QEventLoop loop;
                starting.set_value({QThread::currentThread(), &loop});
                loop.exec();
                object.reset();
            }
            ending.set_value();
        });
    } catch (const std::system_error&) {
        return;
    }
    const Started running = started.get();
    moved->moveToThread(running.thread);
    loop_ = running.loop;
}

EventThread::~EventThread() {
    if (!loop_) return;
    post([loop = loop_] { loop->quit(); });
    if (ended_.wait_for(exitTimeout_) == std::future_status::ready) {
        thread_.join();
    } else {
        thread_.detach();
    }
}

void EventThread::post(std::function<void()> function) {
    if (loop_) QMetaObject::invokeMethod(loop_, std::move(function), Qt::QueuedConnection);
}

}  // namespace vell
