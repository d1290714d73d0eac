// SPDX-License-Identifier: MIT
#include "toolkit/module_logger.h"

#include <QHash>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <mutex>
#include <utility>

namespace vell {
namespace {

struct Registry {
    std::mutex lock;
    QHash<QString, std::shared_ptr<ModuleLogger>> loggers;
    qint64 maxPrefixLen = 8;
};

Registry& registry() {
    static Registry shared;
    return shared;
}

/// Characters as people count them.
qint64 characterCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qint64 count = 0;
    while (finder.toNextBoundary() >= 0)
        count++;
    return count;
}

LogLevel environmentLevel(const QString& prefix, const Logger& parent) {
    const QString variable = QStringLiteral("LOGLEVEL_") + prefix.toUpper().trimmed();
    const QString value = qEnvironmentVariable(variable.toLocal8Bit().constData()).toLower();
    return value.isEmpty() ? parent.logLevel() : LogLevel::fromString(value);
}

}  // namespace

ModuleLogger::ModuleLogger(std::shared_ptr<Logger> parent, QString prefix,
                           std::optional<LogLevel> level)
    : parent_(std::move(parent)),
      prefix_(std::move(prefix)),
      prefixLength_(characterCount(prefix_)),
      logLevel_(level ? *level : environmentLevel(prefix_, *parent_)) {}

std::shared_ptr<ModuleLogger> ModuleLogger::defaultLogger(const QString& prefix) {
    Registry& all = registry();
    {
        const std::lock_guard lock(all.lock);
        if (auto known = all.loggers.value(prefix)) return known;
    }
    // Made outside the lock: reading the level may print. Another thread may be first.
    auto made = std::make_shared<ModuleLogger>(prefix);
    const std::lock_guard lock(all.lock);
    if (auto known = all.loggers.value(prefix)) return known;
    all.loggers.insert(prefix, made);
    all.maxPrefixLen = std::max(all.maxPrefixLen, made->prefixLength_);
    return made;
}

qint64 ModuleLogger::getMaxPrefixLength() {
    const std::lock_guard lock(registry().lock);
    return registry().maxPrefixLen;
}

void ModuleLogger::primaryLog(LogLevel level, const LogValue& message,
                              std::span<const LogValue> values) {
    if (level > logLevel_ || level > parent_->logLevel()) return;
    const qint64 padding = getMaxPrefixLength() - prefixLength_;
    const auto line = [&] {
        return prefix_ + QStringLiteral(": ") + QString(std::max<qint64>(padding, 0), u' ') +
               message.text();
    };
    parent_->primaryLog(LogLevel::log, line, values);
}

QString ModuleLogger::description() const {
    return QStringLiteral("<ModLog[") + prefix_ + QStringLiteral("]: ") + logLevel_.description() +
           QStringLiteral(" parent") + parent_->description() + u'>';
}

}  // namespace vell
