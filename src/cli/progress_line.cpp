// SPDX-License-Identifier: MIT
#include "cli/progress_line.h"

#include <unistd.h>

#include <utility>

#include "cli/standard_streams.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 firstDelay = 300;  // milliseconds
constexpr qint64 interval = 100;    // milliseconds

QString shownSpan(int seconds) {
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, '0'_L1);
}

}  // namespace

ProgressLine::ProgressLine(bool isWanted)
    : isShown_(isWanted && isatty(STDERR_FILENO) != 0), next_(firstDelay) {
    elapsed_.start();
}

void ProgressLine::show(const QString& line) {
    if (!isShown_ || elapsed_.elapsed() < next_) return;
    next_ = elapsed_.elapsed() + interval;
    writeError(u"\r\033[K"_s + line);
    isDirty_ = true;
}

void ProgressLine::show(const QString& what, qsizetype done, qsizetype all,
                        std::optional<int> secondsLeft) {
    QString line = u"%1: %2 of %3"_s.arg(what).arg(done).arg(all);
    if (secondsLeft) line += u", %1 left"_s.arg(shownSpan(*secondsLeft));
    show(line);
}

void ProgressLine::clear() {
    if (std::exchange(isDirty_, false)) writeError(u"\r\033[K"_s);
}

}  // namespace vell
