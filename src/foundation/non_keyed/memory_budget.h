#pragma once
// SPDX-License-Identifier: MIT
//
// MemoryBudget: the bound on what reading a non-keyed archive may allocate, in proportion to its
// size. Honest archives stay far below it; a few bytes, though, can name a class whose empty
// instance is a hundred times as large.

#include "foundation/non_keyed/typed_stream.h"

namespace foundation::nonkeyed {

class MemoryBudget {
  public:
    /// The archive's size in bytes.
    explicit MemoryBudget(qsizetype archiveSize)
        : working_(static_cast<quint64>(archiveSize) * 16 + (64u << 20)),
          kept_(static_cast<quint64>(archiveSize) * 7 + (56u << 20)) {}

    /// Takes bytes that are freed after the read; throws MalformedArchive when that is too much.
    void takeWorking(quint64 bytes) {
        if (bytes > working_) throw MalformedArchive();
        working_ -= bytes;
    }
    /// Takes bytes that the rebuilt values keep; throws like takeWorking().
    void takeKept(quint64 bytes) {
        takeWorking(bytes);
        if (bytes > kept_) throw MalformedArchive();
        kept_ -= bytes;
    }

  private:
    quint64 working_;
    quint64 kept_;
};

}  // namespace foundation::nonkeyed
