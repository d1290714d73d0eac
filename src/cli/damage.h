#pragma once
// SPDX-License-Identifier: MIT
//
// What is wrong with a transcript that can't be read, and where: for those who look for what broke
// it.

#include <QString>
#include <exception>

#include "foundation/data.h"

namespace vell {

/// In words, after the error that reading it ended with.
[[nodiscard]] QString damageIn(const foundation::Data& bytes, const std::exception& error);

}  // namespace vell
