#pragma once
// SPDX-License-Identifier: MIT
//
// The conversations of the samples.

#include "support/transcript_writer.h"

namespace samples {

/// Three people, one cat, four days.
[[nodiscard]] support::Transcript catInTheBathtub();
/// Two people and two umbrellas, years earlier.
[[nodiscard]] support::Transcript twoUmbrellas();
/// In Hebrew, with numbers and Latin words between.
[[nodiscard]] support::Transcript lampInTheWindow();
/// Two people who said nothing.
[[nodiscard]] support::Transcript nobodySaidAnything();

}  // namespace samples
