#pragma once
// SPDX-License-Identifier: MIT
//
// Painting a transcript into a picture or onto the pages of a PDF, for machines without a display
// and for screenshots.

#include <QString>

namespace vell {

/// Saves the timeline of the transcript at the path, as a PDF where the target is called so, else
/// as the window shows it; returns the program's exit code.
[[nodiscard]] int render(const QString& path, const QString& target, bool isDark);

}  // namespace vell
