#pragma once
// SPDX-License-Identifier: MIT
#include <QTest>
#include <functional>

namespace vell::test {

/// Runs the event loop until the condition holds; false when that takes too long.
inline bool waitFor(const std::function<bool()>& condition, int milliseconds = 60000) {
    return QTest::qWaitFor(condition, milliseconds);
}

}  // namespace vell::test
