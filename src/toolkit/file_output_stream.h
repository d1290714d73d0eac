#pragma once
// SPDX-License-Identifier: MIT
//
// Where consoles write: any stream of byte buckets, and the one over a C stream. Nothing here is
// locked or flushed line by line; the C stream sees to both.

#include <QByteArrayView>
#include <cstdio>
#include <exception>
#include <span>

namespace vell {

/// Writes a list of byte buckets in order; may throw.
template <class Stream>
concept GWritableStreamType = requires(Stream& stream, std::span<const QByteArrayView> buckets) {
    stream.write(buckets);
};

class FileOutputStream {
  public:
    class Error : public std::exception {
      public:
        enum Case { WriteFailed, Closed };
        explicit Error(Case value) : value(value) {}
        /// The name of the case.
        [[nodiscard]] const char* what() const noexcept override;
        const Case value;
    };

    /// Borrows the handle until end() closes it; null makes a closed stream.
    explicit FileOutputStream(std::FILE* handle) : handle_(handle) {}

    [[nodiscard]] std::FILE* handle() const { return handle_; }
    /// Throws Error::Closed without a handle, Error::WriteFailed when the C stream took less.
    void write(std::span<const QByteArrayView> buckets);
    /// Does nothing when closed.
    void flush();
    /// Closes the C stream and forgets it; does nothing when closed.
    void end();

  private:
    std::FILE* handle_;
};

}  // namespace vell
