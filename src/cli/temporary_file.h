#pragma once
// SPDX-License-Identifier: MIT
//
// TemporaryFile: a file that becomes a document once it is complete, so that no partial document is
// ever visible. Where the file system can, it has no name until then and so vanishes with the
// program, however that ends. Elsewhere it has a hidden one; unless it was kept it is removed, also
// when SIGINT, SIGTERM, SIGHUP or SIGPIPE ends the program. Each thread may have its own.

#include <sys/types.h>

#include <QByteArray>
#include <functional>
#include <memory>

namespace vell {

class TemporaryFile {
  public:
    /// Creates the file, readable for its owner only. Throws WriteError.
    explicit TemporaryFile(const QByteArray& folder);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    /// Sets the file's permissions and gives it its name. Throws WriteError; then nothing at the
    /// path has changed.
    void keepAs(const QByteArray& path, mode_t permissions, bool replacesExisting);

  private:
    class Registration;

    QByteArray folder_;
    QByteArray path_;  // empty while it has no name
    std::unique_ptr<Registration> registration_;
    int descriptor_ = -1;

    void name(const std::function<bool(const char* path)>& create);
    void nameAs(const QByteArray& path, bool replacesExisting);
    void renameAs(const QByteArray& path, bool replacesExisting);
};

}  // namespace vell
