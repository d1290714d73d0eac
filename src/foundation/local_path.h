#pragma once
// SPDX-License-Identifier: MIT
//
// Paths of files on disk, as people name them. Qt's file classes take a path that starts with ":"
// for one of the program's own resources.

#include <QDir>
#include <QString>

namespace foundation {

/// The path in a form that only ever names a file on disk.
[[nodiscard]] inline QString localPath(const QString& path) {
    return path.startsWith(u':') ? QDir::currentPath() + u'/' + path : path;
}

}  // namespace foundation
