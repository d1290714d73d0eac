#pragma once
// SPDX-License-Identifier: MIT
//
// The errors of the keyed reader, worded as the platform words them so that load logs can be
// compared; memory addresses and image paths, which differ from run to run, are left out. Where
// the platform's wording is not known, the text is our own.

#include <QByteArrayView>
#include <span>
#include <string_view>

#include "foundation/class_registry.h"
#include "foundation/data.h"
#include "foundation/error.h"

namespace foundation::keyed {

[[nodiscard]] Error emptyDataError();
[[nodiscard]] Error nonKeyedArchiveError();
/// Shows the first eight bytes.
[[nodiscard]] Error incomprehensibleArchiveError(const Data& data);
[[nodiscard]] Error missingKeyError(std::string_view key);
[[nodiscard]] Error missingClassInformationError();
/// No class of that name is known.
[[nodiscard]] Error unknownClassError(QByteArrayView className, std::string_view key);
/// The class is known but not among those that the caller allows.
[[nodiscard]] Error unexpectedClassError(const ClassInfo& info, std::string_view key,
                                         std::span<const ClassInfo* const> allowedClasses);
[[nodiscard]] Error insecureClassError(const ClassInfo& info);
/// A value that breaks the property list's format, or a reference to none.
[[nodiscard]] Error brokenValueError(std::string_view key);
/// Counts, nesting or sharing beyond what a file of this size can hold; `what` is a plural.
[[nodiscard]] Error excessError(const char* what);

}  // namespace foundation::keyed
