#pragma once
// SPDX-License-Identifier: MIT
//
// StoredData: bytes that are in memory, or still in the file they came from and read again whenever
// they are needed. Files change and vanish: then there are no bytes, never others. Values may be
// shared between threads.
//
//     if (const auto bytes = picture.data.load()) decode(*bytes);

#include <memory>
#include <optional>

#include "foundation/data.h"

namespace foundation {

/// A file as it was when it was read.
struct FileState {
    QByteArray path;      ///< as the system's functions expect it
    qint64 size = 0;      ///< bytes
    qint64 modified = 0;  ///< nanoseconds since 1970
    quint64 inode = 0;
};

class StoredData {
  public:
    StoredData() = default;
    /// In memory.
    StoredData(Data data) : size_(data.size()), data_(std::move(data)) {}
    /// In the file, at these offsets.
    StoredData(std::shared_ptr<const FileState> file, qsizetype offset, qsizetype size);

    [[nodiscard]] qsizetype size() const { return size_; }
    [[nodiscard]] bool isEmpty() const { return size_ == 0; }
    /// An address that only copies of these data have while there are any; for tables.
    [[nodiscard]] const char* identity() const {
        return place_ ? reinterpret_cast<const char*>(place_.get()) : data_.begin();
    }
    /// The bytes; of a file that has changed or is gone nothing. May take as long as its disk.
    [[nodiscard]] std::optional<Data> load() const;

    /// Of equal bytes; those that are gone are equal to nothing but copies of the same data.
    friend bool operator==(const StoredData& a, const StoredData& b);
    friend size_t qHash(const StoredData& data, size_t seed = 0) {
        return ::qHash(data.size_, seed);
    }

  private:
    struct Place {
        std::shared_ptr<const FileState> file;
        qsizetype offset;
    };

    qsizetype size_ = 0;
    Data data_;                           // empty where there is a place
    std::shared_ptr<const Place> place_;  // null for data in memory
};

}  // namespace foundation
