#pragma once
// SPDX-License-Identifier: MIT

#include <QString>
#include <exception>

namespace foundation {

/// Why a transcript can't be read, from the exception, in plain words.
[[nodiscard]] QString plainReason(const std::exception& error);

}  // namespace foundation
