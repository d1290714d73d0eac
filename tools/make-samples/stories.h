#pragma once
// SPDX-License-Identifier: MIT
//
// The conversations of the samples.

#include "writers/transcript_writer.h"

namespace samples {

/// Three people, one cat, four days.
[[nodiscard]] writers::Transcript catInTheBathtub();
/// Two people and two umbrellas, years earlier.
[[nodiscard]] writers::Transcript twoUmbrellas();
/// In Hebrew, with numbers and Latin words between.
[[nodiscard]] writers::Transcript lampInTheWindow();
/// Two people who said nothing.
[[nodiscard]] writers::Transcript nobodySaidAnything();

}  // namespace samples
