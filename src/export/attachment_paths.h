#pragma once
// SPDX-License-Identifier: MIT
//
// Where the pictures and files of a document are, when they were written beside it.

#include <QHash>
#include <QString>

#include "foundation/local_path.h"

namespace vell {

/// By the event's sequence; as a document refers to it, with slashes and not encoded. Empty when
/// nothing was written out.
using AttachmentPaths = QHash<qint64, QString>;

/// Such a path as the address in a link; every reader takes it for relative, whatever it holds.
[[nodiscard]] inline QString attachmentAddress(const QString& path) {
    return QString::fromLatin1(foundation::pathBytes(path).toPercentEncoding("/"));
}

}  // namespace vell
