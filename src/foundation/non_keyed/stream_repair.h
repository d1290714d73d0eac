#pragma once
// SPDX-License-Identifier: MIT
//
// Finds the bytes at which a damaged non-keyed archive has lost its grammar: each break is mended
// by the one byte with which reading goes on longest, so that what stands behind it keeps its
// numbers. What a mended byte belongs to can't be trusted; everything else can. Bytes that are left
// as they are although their object isn't what its owner holds there count as mended.

#include <QByteArray>
#include <vector>

#include "foundation/non_keyed/stream_skimmer.h"

namespace foundation::non_keyed {

struct StreamRepair {
    QByteArray bytes;               ///< of the mended archive, as long as the damaged one
    std::vector<qsizetype> mended;  ///< in ascending order
    qsizetype firstBreak = -1;      ///< where reading first failed; -1 if it didn't
};

/// Takes time and memory in proportion to the bytes.
[[nodiscard]] StreamRepair repairStream(QByteArrayView bytes, const ClassRegistry& registry,
                                        const std::vector<ClassShape>& shapes);

}  // namespace foundation::non_keyed
