#pragma once
// SPDX-License-Identifier: MIT
//
// Where the pictures and files of a document are, when they were written beside it.

#include <QHash>
#include <QString>

namespace vell {

/// By the event's sequence; as a document refers to it, with slashes and not encoded. Empty when
/// nothing was written out.
using AttachmentPaths = QHash<qint64, QString>;

}  // namespace vell
