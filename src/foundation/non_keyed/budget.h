#pragma once
// SPDX-License-Identifier: MIT
//
// Budget: what reading a non-keyed archive may allocate, in proportion to its size. Real archives
// stay far below it; but a few bytes can name a class whose empty instance is a hundred times as
// large.

#include "foundation/non_keyed/typed_stream.h"

namespace foundation::non_keyed {

class Budget {
  public:
    /// The archive's size in bytes.
    explicit Budget(qsizetype archiveSize)
        : working_(static_cast<quint64>(archiveSize) * 16 + (64u << 20)),
          kept_(static_cast<quint64>(archiveSize) * 7 + (56u << 20)) {}

    /// Spends bytes that are freed after the read; throws MalformedArchive when it is exceeded.
    void spendWorking(quint64 bytes) {
        if (bytes > working_) throw MalformedArchive();
        working_ -= bytes;
    }
    /// Spends bytes that the rebuilt values keep; throws like spendWorking().
    void spendKept(quint64 bytes) {
        spendWorking(bytes);
        if (bytes > kept_) throw MalformedArchive();
        kept_ -= bytes;
    }

  private:
    quint64 working_;
    quint64 kept_;
};

}  // namespace foundation::non_keyed
