#pragma once
// SPDX-License-Identifier: MIT
//
// Bytes in pieces and as people read them, for the load log.

#include <QByteArrayView>
#include <QString>
#include <vector>

namespace vell {

/// Consecutive pieces of `size` bytes, the last one shorter, none empty. A size below 1 is a bug
/// and stops the program.
[[nodiscard]] std::vector<QByteArrayView> chunk(QByteArrayView data, qsizetype size);

/// Lines of "62 00  |b.|": each byte in hexadecimal, then each as the character it is in ASCII, "."
/// when it can't be printed. The last, shorter line is not padded.
[[nodiscard]] QString hexdump(QByteArrayView data, qsizetype bytesPerLine);

}  // namespace vell
