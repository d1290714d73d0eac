#pragma once
// SPDX-License-Identifier: MIT
//
// Files that store something long once and name it many times over. What a program does for each
// name then adds up to far more than the file: each row is a way in which one did.

#include <QByteArray>
#include <span>

namespace vell::test {

struct HostileFile {
    const char* name;
    /// A transcript of about this many bytes.
    QByteArray (*make)(qsizetype size);
    /// What it describes is larger than it may be: no program reads it.
    bool isRefused = false;
};

[[nodiscard]] std::span<const HostileFile> hostileFiles();

}  // namespace vell::test
