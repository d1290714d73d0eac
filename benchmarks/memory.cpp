// SPDX-License-Identifier: MIT
#include "memory.h"

#include <QFile>
#include <QProcess>
#include <QTimeZone>
#include <cstdio>

#include "transcript/chat_log.h"

namespace benchmarks {

int printPeakMemory(const char* path) {
    const foundation::Calendar calendar(QTimeZone("Europe/Berlin"));
    const auto log = vell::TesselChatLog::fromFile(QFile::decodeName(path), calendar);
    QFile status(QStringLiteral("/proc/self/status"));
    if (log.events().empty() || !status.open(QIODevice::ReadOnly)) return 1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (!line.startsWith("VmHWM:")) continue;
        const qint64 kilobytes = line.mid(6).replace("kB", "").trimmed().toLongLong();
        std::printf("%lld\n", static_cast<long long>(kilobytes * 1024));
        return 0;
    }
    return 1;
}

std::optional<double> peakMemory(const QString& path) {
    QProcess child;
    child.start(QStringLiteral("/proc/self/exe"), {QStringLiteral("--peak-memory"), path});
    if (!child.waitForFinished(-1) || child.exitCode() != 0) return {};
    return child.readAllStandardOutput().trimmed().toDouble();
}

}  // namespace benchmarks
