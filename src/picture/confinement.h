#pragma once
// SPDX-License-Identifier: MIT
//
// What this process gives up before it looks at the first byte of a picture. Each step is taken
// where the system knows it; within a sandbox that denies one, the others still hold.

namespace vell::confinement {

/// First thing: nothing inherited but what the process works with, and bounded memory.
void limitResources();
/// For the thread that calls, and those it starts: no path and no connection any more.
void denyPaths();
/// For all threads: no descriptor any more, and no call but those that computing in memory needs.
void denyCalls();
/// So many seconds of the processor from now on, then the process ends.
void allowSeconds(int seconds);

}  // namespace vell::confinement
