#pragma once
// SPDX-License-Identifier: MIT
//
// Small widgets that several windows share. The caller owns them.

#include <QFrame>
#include <QLabel>
#include <QPalette>
#include <QString>

namespace vell {

struct ApplicationInfo;

inline constexpr int defaultPadding = 16;  // points

/// "Version: 1.0 (17)".
[[nodiscard]] QString versionLine(const ApplicationInfo& info);

/// A label in the palette's secondary label colour, following palette changes.
[[nodiscard]] QLabel* secondaryLabel(const QString& text);

/// A label that opens the address when clicked or pressed, in the palette's colour of that role.
[[nodiscard]] QLabel* linkLabel(const QString& text, const QString& address,
                                QPalette::ColorRole color = QPalette::Link);

/// A horizontal line between two parts of a window.
[[nodiscard]] QFrame* divider();

}  // namespace vell
