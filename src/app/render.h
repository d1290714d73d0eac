#pragma once
// SPDX-License-Identifier: MIT
//
// Painting a transcript into a picture, for machines without a display and for screenshots.

#include <QString>

namespace vell {

/// Paints the window's timeline of the transcript at the path; returns the program's exit code.
[[nodiscard]] int render(const QString& path, const QString& target, bool isDark);

}  // namespace vell
