#pragma once
// SPDX-License-Identifier: MIT
//
// Some dark themes of the toolkit leave the colour of secondary text, that of placeholders, black.

namespace vell {

/// Derives that colour of the application's palette from the text's, as the timeline does, where it
/// is another one. To be called at the start and after each change of the palette.
void repairSecondaryText();

}  // namespace vell
