#pragma once
// SPDX-License-Identifier: MIT
//
// ModuleLogger: a logger that puts a module's tag before each message and forwards it to a parent,
// aligned over all registered modules. Its level is fixed; LOGLEVEL_<PREFIX> sets it. The parent
// takes every forwarded line as a plain one, whatever its level was here, and filters it once more.

#include <QString>
#include <memory>
#include <optional>

#include "toolkit/console.h"
#include "toolkit/logger.h"

namespace vell {

class ModuleLogger final : public Logger {
  public:
    /// Without a level, the one of the environment variable, else the parent's at this moment.
    ModuleLogger(std::shared_ptr<Logger> parent, QString prefix,
                 std::optional<LogLevel> level = std::nullopt);
    explicit ModuleLogger(QString prefix, std::optional<LogLevel> level = std::nullopt)
        : ModuleLogger(console::defaultConsole(), std::move(prefix), level) {}

    /// The registered logger of a prefix, made on first request over the default console of then.
    static std::shared_ptr<ModuleLogger> defaultLogger(const QString& prefix);
    /// Characters of the longest prefix registered, at least 8.
    static qint64 getMaxPrefixLength();

    [[nodiscard]] const std::shared_ptr<Logger>& parent() const { return parent_; }
    [[nodiscard]] const QString& prefix() const { return prefix_; }
    [[nodiscard]] LogLevel logLevel() const override { return logLevel_; }
    void primaryLog(LogLevel level, const LogValue& message,
                    std::span<const LogValue> values) override;
    /// "<ModLog[KVS]: trace parent<ConsoleLog: error>>".
    [[nodiscard]] QString description() const override;

  private:
    const std::shared_ptr<Logger> parent_;
    const QString prefix_;
    const qint64 prefixLength_;
    const LogLevel logLevel_;
};

}  // namespace vell
