#pragma once
// SPDX-License-Identifier: MIT
//
// The format that shows the archive itself in place of the chat in it.

#include "export/format.h"

namespace vell {

/// Documents in it are not written from a log but by FileExporter.
inline constexpr Format archiveFormat{
    .name = "archive",
    .extension = "archive.txt",
    .mimeType = "text/plain",
    .description = "the archive with all its keys and values",
    .separator = "\n",
    .readsAttachments = false,
    .showsPictures = false,
    .write = nullptr,
};

}  // namespace vell
