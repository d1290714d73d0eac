#pragma once
// SPDX-License-Identifier: MIT
//
// FileReader: from a path to a file wrapper with its bytes. May block for as long as a slow disk
// does, so it is only called on detached threads.

#include <QString>
#include <memory>

#include "foundation/file_wrapper.h"

namespace vell {

class FileReader {
  public:
    virtual ~FileReader() = default;
    /// A wrapper of what is at the path; contents are absent if it is not a regular file. Throws an
    /// Error if there is nothing, or it can't be opened, is too large, or reading it fails. Called
    /// on any thread, several at once.
    virtual std::shared_ptr<const foundation::FileWrapper> read(const QString& path) = 0;
};

/// Reads from the disk. Symbolic links are followed, but the wrapper has the link's name. Files are
/// opened for reading only and closed before the call returns.
class DiskFileReader final : public FileReader {
  public:
    std::shared_ptr<const foundation::FileWrapper> read(const QString& path) override;
};

/// The path that stands for standard input.
[[nodiscard]] bool isStandardInput(const QString& path);

}  // namespace vell
