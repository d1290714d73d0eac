// SPDX-License-Identifier: MIT
#include "toolkit/console.h"

#include <cstdio>
#include <mutex>

#include "foundation/checked.h"
#include "foundation/print.h"

namespace vell {

QString ConsoleBase::description() const {
    const LogLevel level = logLevel();
    QString text = QStringLiteral("<ConsoleLog: ") + level.description();
    if (stderrLogLevel_ != level) text += u' ' + stderrLogLevel_.description();
    return text + u'>';
}

void ConsoleBase::printWriteFailure() noexcept {
    QString reason;
    try {
        throw;
    } catch (const std::exception& error) {
        reason = log_detail::printed(error);
    } catch (...) {
        reason = QStringLiteral("unknown error");
    }
    foundation::print(QStringLiteral("ERROR LOG WRITE FAILED: ") + reason);
}

namespace console {
namespace {

struct Shared {
    std::mutex mutex;
    std::shared_ptr<Logger> logger = std::make_shared<Console2<>>(
        FileOutputStream(stdout), FileOutputStream(stderr), LogLevel::defaultLevel());
};

Shared& shared() {
    static Shared instance;
    return instance;
}

}  // namespace

std::shared_ptr<Logger> defaultConsole() {
    const std::lock_guard lock(shared().mutex);
    return shared().logger;
}

void setDefaultConsole(std::shared_ptr<Logger> logger) {
    if (!logger) foundation::fatal("no default console");
    const std::lock_guard lock(shared().mutex);
    shared().logger.swap(logger);
}

}  // namespace console
}  // namespace vell
