#pragma once
// SPDX-License-Identifier: MIT
//
// Some dark themes of the toolkit leave secondary text, that of placeholders, black, and links a
// dark blue.

namespace vell {

/// Derives these colours of the application's palette from the text's where they aren't legible. To
/// be called at the start and after each change of the palette.
void keepPaletteLegible();

}  // namespace vell
