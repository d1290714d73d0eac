#pragma once
// SPDX-License-Identifier: MIT
//
// Data: an immutable slice of bytes that keeps its buffer alive. Attachments of a transcript are
// slices of the one buffer that the file was read into; taking a slice never copies. Values may be
// shared between threads.

#include <QByteArray>
#include <QByteArrayView>
#include <QHashFunctions>
#include <compare>
#include <memory>

namespace foundation {

class Data {
  public:
    Data() = default;
    /// Shares the array's buffer.
    Data(const QByteArray& bytes);
    /// Takes a buffer owned by something else, e.g. a mapping; the owner lives as long as a slice.
    Data(std::shared_ptr<const void> owner, QByteArrayView bytes);

    [[nodiscard]] qsizetype size() const { return size_; }
    [[nodiscard]] bool isEmpty() const { return size_ == 0; }
    [[nodiscard]] const char* begin() const { return bytes_.get(); }
    [[nodiscard]] const char* end() const { return bytes_.get() + size_; }
    [[nodiscard]] QByteArrayView view() const { return {bytes_.get(), size_}; }
    /// A deep copy.
    [[nodiscard]] QByteArray toByteArray() const { return view().toByteArray(); }
    /// The bytes [offset, offset + size) of this slice; they must be inside it.
    [[nodiscard]] Data slice(qsizetype offset, qsizetype size) const;

    friend bool operator==(const Data& a, const Data& b) { return a.view() == b.view(); }
    friend size_t qHash(const Data& data, size_t seed = 0) {
        return qHashBits(data.begin(), static_cast<size_t>(data.size()), seed);
    }

  private:
    std::shared_ptr<const char> bytes_;
    qsizetype size_ = 0;
};

}  // namespace foundation
