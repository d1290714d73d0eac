// SPDX-License-Identifier: MIT
#include "figures.h"

#include <QFile>
#include <algorithm>
#include <cstdio>

namespace benchmarks {
namespace {

bool isAnyExceeded = false;

}  // namespace

double processorMilliseconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double peakBytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).replace("kB", "").trimmed().toDouble() * 1024;
    return 0;
}

void forgetPeak() {
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    if (references.open(QIODevice::WriteOnly)) references.write("5");
}

double quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(part * static_cast<double>(values.size() - 1))];
}

bool report(const char* what, double figure, double limit, const char* unit) {
    const bool isMet = figure <= limit;
    isAnyExceeded |= !isMet;
    std::printf("%-62s %9.3f %-2s  limit %6g  %s\n", what, figure, unit, limit,
                isMet ? "met" : "EXCEEDED");
    std::fflush(stdout);
    return isMet;
}

bool reportTime(const char* what, double time, double limit, double yardstick,
                double multipleLimit) {
    const double multiple = time / yardstick;
    const bool isMet = time <= limit && (multipleLimit == 0 || multiple <= multipleLimit);
    isAnyExceeded |= !isMet;
    std::printf("%-60s %8.3f ms  limit %3g  %7.2f moves", what, time, limit, multiple);
    if (multipleLimit > 0) std::printf("  limit %3g", multipleLimit);
    std::printf("  %s\n", isMet ? "met" : "EXCEEDED");
    std::fflush(stdout);
    return isMet;
}

int exitCode() {
    return isAnyExceeded ? 1 : 0;
}

}  // namespace benchmarks
