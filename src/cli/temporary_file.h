#pragma once
// SPDX-License-Identifier: MIT
//
// TemporaryFile: a file that becomes a document once it is complete, so that no partial document is
// ever visible. Unless it was kept it is removed, also when SIGINT, SIGTERM, SIGHUP or SIGPIPE ends
// the program.

#include <sys/types.h>

#include <QByteArray>

namespace vell {

class TemporaryFile {
  public:
    /// Creates the file, readable for its owner only; there is one at a time. Throws WriteError.
    explicit TemporaryFile(const QByteArray& folder);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    /// Sets the file's permissions and gives it its name. Throws WriteError; then nothing at the
    /// path has changed.
    void keepAs(const QByteArray& path, mode_t permissions, bool replacesExisting);

  private:
    QByteArray path_;
    int descriptor_ = -1;
};

}  // namespace vell
