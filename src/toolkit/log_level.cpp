// SPDX-License-Identifier: MIT
#include "toolkit/log_level.h"

#include <QString>
#include <array>

#include "foundation/print.h"

namespace vell {
namespace {

constexpr std::array<const char*, 5> names = {"error", "warn", "log", "info", "trace"};
// One width for all, so that messages stand in one column; "Trace" is meant to be less prominent.
constexpr std::array<QByteArrayView, 5> tags = {"ERROR: ", "WARN:  ", "", "INFO:  ", "Trace: "};

}  // namespace

std::optional<LogLevel> LogLevel::fromRawValue(int rawValue) {
    if (rawValue < error || rawValue > trace) return std::nullopt;
    return LogLevel(static_cast<Case>(rawValue));
}

LogLevel LogLevel::fromString(QStringView text) {
    if (text.isEmpty() || text == u"error") return error;
    if (text.startsWith(u"warn")) return warn;
    if (text.startsWith(u"info") || text == u"debug") return info;
    if (text == u"trace") return trace;
    if (text == u"log") return log;
    foundation::print(QStringLiteral("ERROR: unsupported LOGLEVEL: `") + text.toString() + u'`');
    return error;
}

LogLevel LogLevel::defaultLevel() {
    static const LogLevel level = fromString(qEnvironmentVariable("LOGLEVEL").toLower());
    return level;
}

QString LogLevel::description() const {
    return QString::fromLatin1(names[static_cast<std::size_t>(value_)]);
}

QString LogLevel::logPrefix() const {
    return QString::fromLatin1(logPrefixAsBytes());
}

QByteArrayView LogLevel::logPrefixAsBytes() const {
    return tags[static_cast<std::size_t>(value_)];
}

}  // namespace vell
