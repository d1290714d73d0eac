#pragma once
// SPDX-License-Identifier: MIT
//
// Waiting for what other threads post to this one.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <functional>

namespace vell::test {

/// Runs the event loop until the condition holds; false when that takes too long.
inline bool waitFor(const std::function<bool()>& condition, qint64 milliseconds = 10000) {
    const QDeadlineTimer deadline(milliseconds);
    while (!condition() && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(2);  // the other threads want the processor
    }
    return condition();
}

}  // namespace vell::test
