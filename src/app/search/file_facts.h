#pragma once
// SPDX-License-Identifier: MIT
//
// What the file system knows about paths, without ever waiting long: a path may be on a mount that
// no longer responds.

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace vell {

struct FileFacts {
    bool exists = false;
    bool isFolder = false;
    QString canonicalPath;  ///< empty for what doesn't exist
};

/// The facts of each path; nothing for those that weren't known within 100 milliseconds. Blocks for
/// no longer than that, however many paths there are.
[[nodiscard]] std::vector<std::optional<FileFacts>> fileFacts(const QStringList& paths);

/// The same for one path.
[[nodiscard]] std::optional<FileFacts> fileFacts(const QString& path);

}  // namespace vell
