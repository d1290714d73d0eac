#pragma once
// SPDX-License-Identifier: MIT
//
// Names that stand in archives: one with a single wrong byte is corrected, others are left alone.

#include <QByteArrayView>

namespace vell::recovery {

/// The key or class that was meant if one byte is wrong, else the name itself.
[[nodiscard]] QByteArrayView correctedKey(QByteArrayView name);
[[nodiscard]] QByteArrayView correctedClass(QByteArrayView name);

/// How many bytes differ in two of equal length.
[[nodiscard]] qsizetype differences(QByteArrayView a, QByteArrayView b);

}  // namespace vell::recovery
