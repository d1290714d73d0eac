#pragma once
// SPDX-License-Identifier: MIT
//
// Names that a transcript gives its files, made harmless: they come from another person.

#include <QString>

namespace vell {

/// The longest name that is made, in UTF-8 bytes; it leaves room for what a program may append.
inline constexpr qsizetype longestFileName = 200;

/// The last part of a name or path, without what hides or deceives; the fallback where nothing is
/// left. A name without an extension gets this one (without a dot; empty for none).
[[nodiscard]] QString safeFileName(const QString& name, const QString& fallback,
                                   const QString& extension = {});

}  // namespace vell
