#pragma once
// SPDX-License-Identifier: MIT
//
// The console loggers and the process-wide default one. A line is its level's tag, the message, and
// each value after a space; control and direction characters are escaped. Lines of several threads
// may interleave: nothing is locked.
//
//     console::defaultConsole()->warn("No such folder:", path);

#include <atomic>
#include <memory>
#include <span>
#include <utility>

#include "foundation/printable.h"
#include "toolkit/file_output_stream.h"
#include "toolkit/logger.h"

namespace vell {

/// The common base: it only holds the levels.
class ConsoleBase : public Logger {
  public:
    [[nodiscard]] LogLevel logLevel() const override { return logLevel_; }
    /// More verbose lines are dropped from now on.
    void setLogLevel(LogLevel level) { logLevel_ = level; }
    /// Lines this severe go to the standard error of a Console2.
    [[nodiscard]] LogLevel stderrLogLevel() const { return stderrLogLevel_; }
    /// "<ConsoleLog: trace error>": the level, then the standard-error level when it differs.
    [[nodiscard]] QString description() const override;

  protected:
    explicit ConsoleBase(LogLevel logLevel) : logLevel_(logLevel) {}

    /// Writes one line, piece by piece; a failure abandons the rest and is printed.
    template <GWritableStreamType Stream>
    static void writeLine(Stream& stream, LogLevel level, const LogValue& message,
                          std::span<const LogValue> values) {
        static constexpr QByteArrayView space(" ");
        static constexpr QByteArrayView lineFeed("\n");
        try {
            const QByteArray text = foundation::printable(message.text()).toUtf8();
            const QByteArrayView start[] = {level.logPrefixAsBytes(), text};
            stream.write(std::span(start));
            for (const LogValue& value : values) {
                const QByteArray bytes = foundation::printable(value.text()).toUtf8();
                const QByteArrayView piece[] = {space, bytes};
                stream.write(std::span(piece));
            }
            stream.write(std::span(&lineFeed, 1));
        } catch (...) {
            printWriteFailure();
        }
    }

  private:
    /// Prints the exception that is being handled.
    static void printWriteFailure() noexcept;

    std::atomic<LogLevel> logLevel_;
    const LogLevel stderrLogLevel_ = LogLevel::error;
};

/// Writes all lines to one stream.
template <GWritableStreamType Stream = FileOutputStream>
class Console final : public ConsoleBase {
  public:
    Console(Stream stdoutStream, LogLevel logLevel)
        : ConsoleBase(logLevel), stdout_(std::move(stdoutStream)) {}

    [[nodiscard]] Stream& stdoutStream() { return stdout_; }

    void primaryLog(LogLevel level, const LogValue& message,
                    std::span<const LogValue> values) override {
        if (logLevel() < level) return;
        writeLine(stdout_, level, message, values);
    }

  private:
    Stream stdout_;
};

/// Writes errors to one stream and all other lines to another.
template <GWritableStreamType Out = FileOutputStream, GWritableStreamType Err = FileOutputStream>
class Console2 final : public ConsoleBase {
  public:
    Console2(Out stdoutStream, Err stderrStream, LogLevel logLevel)
        : ConsoleBase(logLevel),
          stdout_(std::move(stdoutStream)),
          stderr_(std::move(stderrStream)) {}

    void primaryLog(LogLevel level, const LogValue& message,
                    std::span<const LogValue> values) override {
        if (logLevel() < level) return;
        if (level <= stderrLogLevel()) {
            writeLine(stderr_, level, message, values);
        } else {
            writeLine(stdout_, level, message, values);
        }
    }

  private:
    Out stdout_;
    Err stderr_;
};

namespace console {

/// At first a Console2 over the C streams at the level of the environment.
[[nodiscard]] std::shared_ptr<Logger> defaultConsole();
/// Holders of the old one keep it; null is a bug and stops the program.
void setDefaultConsole(std::shared_ptr<Logger> logger);

template <class Message, class... Values>
void error(const Message& message, const Values&... values) {
    defaultConsole()->error(message, values...);
}
template <class Message, class... Values>
void warn(const Message& message, const Values&... values) {
    defaultConsole()->warn(message, values...);
}
template <class Message, class... Values>
void log(const Message& message, const Values&... values) {
    defaultConsole()->log(message, values...);
}
template <class Message, class... Values>
void info(const Message& message, const Values&... values) {
    defaultConsole()->info(message, values...);
}
template <class Message, class... Values>
void trace(const Message& message, const Values&... values) {
    defaultConsole()->trace(message, values...);
}
template <class Object>
void dir(const Object& object) {
    defaultConsole()->dir(object);
}

}  // namespace console
}  // namespace vell
