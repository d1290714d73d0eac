#pragma once
// SPDX-License-Identifier: MIT
//
// Folders that documents and attachments are written into.

#include <QByteArray>

namespace vell {

/// The folder that the path is in.
[[nodiscard]] QByteArray folderOf(const QByteArray& path);
/// Creates the folder, and those above it, if necessary. Throws WriteError.
void createFolder(const QByteArray& path);
/// The same, each as private as the folder that it mirrors: the last one mirrors `mirrored`, the
/// one above it the one above that. Throws WriteError.
void mirrorFolder(const QByteArray& path, const QByteArray& mirrored);

}  // namespace vell
