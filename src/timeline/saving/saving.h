#pragma once
// SPDX-License-Identifier: MIT
//
// Saving what a transcript holds: the bytes as they were archived, under a name that is safe. A
// dialog asks for the place; errors are reported over the window.

#include <memory>

#include "foundation/file_wrapper.h"
#include "transcript/chat_log.h"

class QWidget;

namespace vell {

void savePicture(QWidget& window, const TesselChatLog::Image& image);
void saveFile(QWidget& window, std::shared_ptr<const foundation::FileWrapper> wrapper);
/// Any bytes, under a name for the dialog's title.
void saveData(QWidget& window, const QString& title, const QString& name,
              const foundation::Data& data);
/// Whether there is anything to write: links lead nowhere, and some files came without their bytes.
[[nodiscard]] bool canSave(const foundation::FileWrapper& wrapper);
/// Writes a file, or a folder with all in it but links; returns what went wrong, nothing when all
/// is well.
[[nodiscard]] QString writeWrapper(const QString& path, const foundation::FileWrapper& wrapper);

}  // namespace vell
