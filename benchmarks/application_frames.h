#pragma once
// SPDX-License-Identifier: MIT
//
// Loaded into a program, makes it tell on standard output what its first frames and its memory
// cost, and end: "frames WINDOW TIMELINE MEMORY". Only in processes that have watchVariable in
// their environment.
//
// Times are milliseconds of processor time since the process began, so that they mean the same on a
// busy machine: those of the window thread for the first frame of a window, those of all threads
// for the first one with a timeline in it.

namespace benchmarks {

/// "window" or "timeline": what to wait for.
inline constexpr char watchVariable[] = "VELL_BENCHMARK_WATCH";

}  // namespace benchmarks
