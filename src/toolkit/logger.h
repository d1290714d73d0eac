#pragma once
// SPDX-License-Identifier: MIT
//
// Logger: what every part writes its diagnostics through. Logging never fails and never throws; any
// thread may log. A message costs nothing while its level is off: pass a callable when building it
// takes work.
//
//     log.warn("Duplicate email in contacts:", address, name);
//     log.trace([&] { return describeEverything(); });

#include <QString>
#include <array>
#include <span>

#include "toolkit/log_level.h"
#include "toolkit/log_value.h"

namespace vell {

class Logger {
  public:
    Logger() = default;
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    virtual ~Logger() = default;

    [[nodiscard]] virtual LogLevel logLevel() const = 0;
    /// Writes one line when the level is on; only then are the message and the values printed.
    virtual void primaryLog(LogLevel level, const LogValue& message,
                            std::span<const LogValue> values) = 0;
    /// For debugging output.
    [[nodiscard]] virtual QString description() const = 0;

    template <class Message, class... Values>
    void error(const Message& message, const Values&... values) {
        forward(LogLevel::error, message, values...);
    }
    template <class Message, class... Values>
    void warn(const Message& message, const Values&... values) {
        forward(LogLevel::warn, message, values...);
    }
    template <class Message, class... Values>
    void log(const Message& message, const Values&... values) {
        forward(LogLevel::log, message, values...);
    }
    template <class Message, class... Values>
    void info(const Message& message, const Values&... values) {
        forward(LogLevel::info, message, values...);
    }
    template <class Message, class... Values>
    void trace(const Message& message, const Values&... values) {
        forward(LogLevel::trace, message, values...);
    }
    /// Logs the object's printed form, "<nil>" when it is absent, at the level `log`.
    template <class Object>
    void dir(const Object& object) {
        forward(LogLevel::log, object);
    }

  private:
    template <class Message, class... Values>
    void forward(LogLevel level, const Message& message, const Values&... values) {
        const std::array<LogValue, sizeof...(Values)> list = {LogValue(values)...};
        primaryLog(level, LogValue(message), list);
    }
};

}  // namespace vell
