#pragma once
// SPDX-License-Identifier: MIT
//
// What the file system says about paths, asked without ever waiting long: a path may lie on a mount
// that no longer answers.

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace vell {

struct FileFacts {
    bool exists = false;
    bool isFolder = false;
    bool isReadable = false;
    QString canonicalPath;  ///< empty for what doesn't exist
};

/// The facts of each path; nothing for those that weren't told within a moment. Blocks for at most
/// that moment, however many paths there are.
[[nodiscard]] std::vector<std::optional<FileFacts>> fileFacts(const QStringList& paths);

/// The same for one path.
[[nodiscard]] std::optional<FileFacts> fileFacts(const QString& path);

}  // namespace vell
