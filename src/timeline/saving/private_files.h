#pragma once
// SPDX-License-Identifier: MIT
//
// PrivateFiles: files for programs that a picture is dragged to, in a folder that only its owner
// can enter and that is gone when the program ends. GUI thread only.

#include <QString>
#include <QTemporaryDir>
#include <memory>

#include "foundation/data.h"

namespace vell {

class PrivateFiles {
  public:
    /// The process's own.
    static PrivateFiles& shared();

    /// Writes the bytes under this name, which is safe, in a folder of their own; returns the path,
    /// or nothing when that was not possible.
    [[nodiscard]] QString write(const QString& name, const foundation::Data& data);

  private:
    std::unique_ptr<QTemporaryDir> folder_;  // made for the first file
    int count_ = 0;
};

/// Writes the bytes as a file that only its owner may read and write, and none may run; returns
/// what went wrong, nothing when all is well.
[[nodiscard]] QString writeFile(const QString& path, const foundation::Data& data);

}  // namespace vell
