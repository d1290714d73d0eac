#pragma once
// SPDX-License-Identifier: MIT
//
// How much memory loading one file takes, in a process of its own: the highest water mark can't be
// lowered again.

#include <QString>
#include <optional>

namespace benchmarks {

/// Loads the file and prints this process's peak resident memory in bytes; the program's other
/// mode.
int printPeakMemory(const char* path);

/// What printPeakMemory says when run on the file by this same program; nothing when it fails.
[[nodiscard]] std::optional<double> peakMemory(const QString& path);

}  // namespace benchmarks
