#pragma once
// SPDX-License-Identifier: MIT
//
// What all benchmarks share: the processor's clocks, quantiles, and figures printed beside their
// limits.

#include <ctime>
#include <vector>

namespace benchmarks {

/// Milliseconds of processor time so far: of this thread, or with CLOCK_PROCESS_CPUTIME_ID of all.
[[nodiscard]] double processorMilliseconds(clockid_t clock = CLOCK_THREAD_CPUTIME_ID);
/// The most memory this process has had; 0 where the system doesn't say.
[[nodiscard]] double peakBytes();
/// From now on the peak is that of the time after.
void forgetPeak();
/// Of values in any order, not empty: 0.5 is the median.
[[nodiscard]] double quantile(std::vector<double> values, double part);

/// Prints a figure beside its limit. Returns whether it is within.
bool report(const char* what, double figure, double limit, const char* unit = "");
/// A time in milliseconds; also as a multiple of another one measured in the same run, with a limit
/// of its own if it isn't 0.
bool reportTime(const char* what, double time, double limit, double yardstick,
                double multipleLimit = 0);
/// 1 once a reported figure has exceeded its limit, else 0.
[[nodiscard]] int exitCode();

}  // namespace benchmarks
