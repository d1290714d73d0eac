#pragma once
// SPDX-License-Identifier: MIT
//
// A logger that keeps its lines, tags included.

#include <QStringList>
#include <mutex>

#include "toolkit/logger.h"

namespace vell::test {

class LogLines final : public Logger {
  public:
    explicit LogLines(LogLevel level = LogLevel::log) : level_(level) {}
    [[nodiscard]] LogLevel logLevel() const override { return level_; }
    [[nodiscard]] QString description() const override { return QStringLiteral("<LogLines>"); }
    void primaryLog(LogLevel level, const LogValue& message,
                    std::span<const LogValue> values) override {
        if (level_ < level) return;
        QString line = QString::fromUtf8(level.logPrefixAsBytes()) + message.text();
        for (const LogValue& value : values)
            line += u' ' + value.text();
        const std::lock_guard lock(mutex_);
        lines_.append(line);
    }
    /// The lines so far, which are forgotten.
    [[nodiscard]] QStringList take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

  private:
    const LogLevel level_;
    std::mutex mutex_;
    QStringList lines_;
};

}  // namespace vell::test
