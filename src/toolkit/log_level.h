#pragma once
// SPDX-License-Identifier: MIT
//
// LogLevel: how severe a diagnostic line is. A lower value is more severe, so `level <= limit`
// means "is written". The process-wide level comes from the environment variable LOGLEVEL.

#include <QByteArrayView>
#include <QHashFunctions>
#include <QStringView>
#include <compare>
#include <cstdint>
#include <optional>

namespace vell {

class LogLevel {
  public:
    enum Case : std::int8_t { error, warn, log, info, trace };

    constexpr LogLevel(Case value) : value_(value) {}

    /// Nothing unless it is 0 to 4.
    static std::optional<LogLevel> fromRawValue(int rawValue);
    /// The level with this name. Compares exactly: lower-case the text first. "" is `error`,
    /// "debug" is `info`; an unknown name is printed and is `error`.
    static LogLevel fromString(QStringView text);
    /// From the environment variable LOGLEVEL, in any letter case; looked up once.
    static LogLevel defaultLevel();

    [[nodiscard]] constexpr std::int8_t rawValue() const { return value_; }
    /// The case name, e.g. "warn".
    [[nodiscard]] QString description() const;
    /// The tag that starts a line: seven characters, or none for `log`.
    [[nodiscard]] QString logPrefix() const;
    /// The tag as ready-made UTF-8.
    [[nodiscard]] QByteArrayView logPrefixAsBytes() const;

    friend auto operator<=>(const LogLevel&, const LogLevel&) = default;
    friend size_t qHash(LogLevel level, size_t seed = 0) { return ::qHash(level.value_, seed); }

  private:
    Case value_;
};

}  // namespace vell
