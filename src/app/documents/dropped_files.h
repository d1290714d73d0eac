#pragma once
// SPDX-License-Identifier: MIT
//
// The local files that a drag or a command line names.

#include <QMimeData>
#include <QString>
#include <QStringList>

namespace vell {

/// The paths of local files among the dragged addresses; empty when there are none.
[[nodiscard]] QStringList droppedFiles(const QMimeData& data);

/// The absolute path that a command-line argument means: a path, relative to the given folder, or a
/// "file:" address; "-" stays what it is.
[[nodiscard]] QString argumentPath(const QString& argument, const QString& folder);

}  // namespace vell
