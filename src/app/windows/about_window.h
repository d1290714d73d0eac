#pragma once
// SPDX-License-Identifier: MIT
//
// The About window: made once, brought to the front by every About command, hidden by closing.

#include "app/windows/panel_window.h"

namespace vell {

struct ApplicationInfo;

/// The window, 320 by 400 points, not yet shown; the caller owns it.
[[nodiscard]] PanelWindow* makeAboutWindow(const ApplicationInfo& info);

}  // namespace vell
