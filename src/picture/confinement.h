#pragma once
// SPDX-License-Identifier: MIT
//
// The privileges that this process drops before it reads the first byte of a picture. Each step is
// taken where the system supports it, and holds without the others.

namespace vell::confinement {

/// To be called first: closes inherited descriptors and bounds memory.
void limitResources();
/// Denies paths and connections to the calling thread and those that it starts.
void denyPaths();
/// Denies all threads new descriptors and all system calls but those that computing in memory
/// needs.
void denyCalls();
/// Limits the processor time from now on; beyond it the process is killed.
void allowSeconds(int seconds);

}  // namespace vell::confinement
