#pragma once
// SPDX-License-Identifier: MIT
//
// Paths of files on disk, as people name them. Old archives unpack to names in encodings of their
// time; in such a path each byte that is not UTF-8 becomes a lone surrogate of the QString, so that
// the file can still be opened.

#include <QFile>
#include <QString>
#include <QUrl>

namespace foundation {

/// The path that an argument of the program names.
[[nodiscard]] QString pathFromArgument(const char* argument);

/// The path of a file URL, whose escapes may be of any encoding.
[[nodiscard]] QString pathFromUrl(const QUrl& url);

/// The path as Unicode text, which settings keep: one that isn't Unicode becomes a file URL.
[[nodiscard]] QString storedPath(const QString& path);
/// The path that storedPath() made the text of.
[[nodiscard]] QString pathFromStored(const QString& text);

/// The path in a form that Qt's file classes never take for one of the program's own resources.
[[nodiscard]] QString localPath(const QString& path);

/// The path as the system's own functions expect it.
[[nodiscard]] QByteArray pathBytes(const QString& path);

/// Opens the file at the path for reading; on failure the device has the error.
bool openForReading(QFile& file, const QString& path);

}  // namespace foundation
