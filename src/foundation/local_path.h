#pragma once
// SPDX-License-Identifier: MIT
//
// Paths of files on disk, as people name them. Old archives unpack to names in encodings of their
// time; such a path is a QString all the same, in which each byte that is no UTF-8 stands as a lone
// surrogate, so that the file can be opened.

#include <QFile>
#include <QString>

namespace foundation {

/// The path that an argument of the program names.
[[nodiscard]] QString pathFromArgument(const char* argument);

/// The path in a form that Qt's file classes take for a file's on disk, never for one of the
/// program's own resources.
[[nodiscard]] QString localPath(const QString& path);

/// The path as the system's own functions take it.
[[nodiscard]] QByteArray pathBytes(const QString& path);

/// Opens the file at the path for reading; the device tells what went wrong.
bool openForReading(QFile& file, const QString& path);

}  // namespace foundation
