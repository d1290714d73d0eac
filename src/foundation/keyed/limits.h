#pragma once
// SPDX-License-Identifier: MIT
//
// What a keyed archive may ask for. References make a small file describe a graph that is far
// larger; since an honest archive stores every object and every reference to it, what is built from
// it is bounded by its size. All limits are multiples of the file's size, so that memory and time
// are.

#include <QtGlobal>

#include "foundation/attributed_string.h"
#include "foundation/keyed/errors.h"

namespace foundation::keyed {

/// Nested objects; honest transcripts stay below 20.
constexpr int depthLimit = 512;

/// The most elements of one collection: each takes at least eight bytes of an honest file.
[[nodiscard]] constexpr quint64 elementLimit(quint64 fileSize) {
    return fileSize / 8 + 4096;
}

/// The bytes that a string or a box of data takes beside its content.
constexpr quint64 valueOverhead = 48;

/// What an archive may ask for beyond multiples of its size where it stores something once that an
/// honest chat has many times: the runs of equal messages, links on one base.
constexpr quint64 sharedAllowance = quint64(64) << 20;

/// One bounded sum. Throws Error when it is passed.
class Allowance {
  public:
    Allowance(quint64 most, const char* what) : left_(most), what_(what) {}

    void spend(quint64 amount) {
        if (amount > left_) throw excessError(what_);
        left_ -= amount;
    }
    [[nodiscard]] quint64 left() const { return left_; }

  private:
    quint64 left_;
    const char* what_;
};

/// The sums over a whole archive.
struct Limits {
    explicit Limits(quint64 fileSize)
        : elements(2 * elementLimit(fileSize), "elements"),
          runs((16 * fileSize + sharedAllowance) / sizeof(AttributeRun), "attribute runs"),
          bytes(6 * fileSize + 262'144, "strings and data"),
          derivedBytes(7 * fileSize + sharedAllowance, "addresses and names"),
          wrapperBytes(2 * fileSize, "bytes of files"),
          files(fileSize / 32 + 4096, "files"),
          steps(16 * fileSize + 1'000'000, "references") {}

    Allowance elements;      ///< of all collections
    Allowance runs;          ///< of all attributed strings
    Allowance bytes;         ///< of all strings and boxes of data
    Allowance derivedBytes;  ///< of texts made from others
    Allowance wrapperBytes;  ///< in which wrappers are read
    Allowance files;         ///< wrappers, entries of directories included
    Allowance steps;         ///< of other work: instances decoded, keys compared, empty runs passed
};

}  // namespace foundation::keyed
