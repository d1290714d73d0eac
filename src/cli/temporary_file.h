#pragma once
// SPDX-License-Identifier: MIT
//
// TemporaryFile: a file that becomes a document once it is whole, so that nobody ever finds half of
// one. Unless it was kept it is gone in the end, also when SIGINT, SIGTERM, SIGHUP or SIGPIPE ends
// the program.

#include <sys/types.h>

#include <QByteArray>

namespace vell {

class TemporaryFile {
  public:
    /// Makes the file, readable for its owner only; there is one at a time. Throws WriteError.
    explicit TemporaryFile(const QByteArray& folder);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    /// Gives the file its permissions and its name; nothing in between sees neither or half of it.
    /// Throws WriteError; then nothing at the path has changed.
    void keepAs(const QByteArray& path, mode_t permissions, bool replacesExisting);

  private:
    QByteArray path_;
    int descriptor_ = -1;
};

}  // namespace vell
