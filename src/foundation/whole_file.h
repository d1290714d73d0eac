#pragma once
// SPDX-License-Identifier: MIT
//
// Reads a file whole, however large it claims to be. What can't fit is refused before a byte of it
// is read; pipes, which have no size, are read up to the same limit.

#include <QByteArray>
#include <QIODevice>

namespace foundation {

/// Codes of the domain "NSCocoaErrorDomain" for files that can't be read.
enum class ReadErrorCode : qint64 {
    unknown = 256,
    noPermission = 257,
    noSuchFile = 260,
    tooLarge = 263,
};

/// The most bytes of one file: 4 GiB, or half of the memory this process may use.
[[nodiscard]] qint64 mostFileBytes();

/// All remaining bytes of an open file or stream. Throws an Error, with a sentence for people, when
/// that is more than mostFileBytes(), when it is a device, or when reading fails.
[[nodiscard]] QByteArray readWhole(QIODevice& file);

}  // namespace foundation
