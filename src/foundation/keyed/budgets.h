#pragma once
// SPDX-License-Identifier: MIT
//
// What decoding a keyed archive may cost. References let a small file describe a far larger graph;
// since a real archive stores every object and every reference to it, what is built from it is
// bounded by a multiple of the file's size, and so are memory and time.

#include <QtGlobal>

#include "foundation/attributed_string.h"
#include "foundation/keyed/errors.h"

namespace foundation::keyed {

/// Nested objects; real transcripts stay below 20.
constexpr int depthLimit = 512;

/// The most elements of one collection: each takes at least eight bytes of a real file.
[[nodiscard]] constexpr quint64 elementLimit(quint64 fileSize) {
    return fileSize / 8 + 4096;
}

/// The bytes that a string or a box of data takes besides its content.
constexpr quint64 valueOverhead = 48;

/// What an archive may cost beyond multiples of its size where it stores something once that a real
/// chat has many times: the runs of equal messages, links on one base.
constexpr quint64 sharedBudget = quint64(64) << 20;

/// A bounded sum. Throws Error when it is exceeded.
class Budget {
  public:
    Budget(quint64 most, const char* what) : left_(most), what_(what) {}

    void spend(quint64 amount) {
        if (amount > left_) throw excessError(what_);
        left_ -= amount;
    }

  private:
    quint64 left_;
    const char* what_;
};

/// The sums over a whole archive.
struct Budgets {
    explicit Budgets(quint64 fileSize)
        : elements(2 * elementLimit(fileSize), "elements"),
          runs((16 * fileSize + sharedBudget) / sizeof(AttributeRun), "attribute runs"),
          bytes(6 * fileSize + 262'144, "strings and data"),
          derivedBytes(7 * fileSize + sharedBudget, "addresses and names"),
          wrapperBytes(2 * fileSize, "bytes of files"),
          files(fileSize / 32 + 4096, "files"),
          steps(16 * fileSize + 1'000'000, "references") {}

    Budget elements;      ///< of all collections
    Budget runs;          ///< of all attributed strings
    Budget bytes;         ///< of all strings and boxes of data
    Budget derivedBytes;  ///< of texts made from others
    Budget wrapperBytes;  ///< in which wrappers are read
    Budget files;         ///< wrappers, entries of directories included
    Budget steps;         ///< of other work: instances decoded, keys compared, empty runs skipped
};

}  // namespace foundation::keyed
