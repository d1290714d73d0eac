#pragma once
// SPDX-License-Identifier: MIT
//
// Small files that describe far more than they store: something long that is named many times over.
// Each row is a way in which reading or writing one was once too expensive.

#include <QByteArray>
#include <span>

namespace writers {

struct HostileFile {
    const char* name;
    /// A transcript of about this many bytes.
    QByteArray (*make)(qsizetype size);
    /// What it describes is larger than it may be: no program reads it.
    bool isRefused = false;
};

/// What each name costs must not add up.
[[nodiscard]] std::span<const HostileFile> hostileFiles();
/// Messages whose log is far larger than the file, or nearly so; a few megabytes for 3 MiB.
[[nodiscard]] std::span<const HostileFile> multipliedLogs();

}  // namespace writers
