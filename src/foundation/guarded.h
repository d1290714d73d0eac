#pragma once
// SPDX-License-Identifier: MIT
//
// The root of every thread that works on files: whatever the work throws, std::bad_alloc included,
// is that work's failure and never ends the program.
//
//     foundation::runDetached([=] { read(path); }, [=] { reportFailure(path); });

#include <system_error>
#include <thread>
#include <utility>

namespace foundation {

/// The work, followed by `failed` when it throws.
template <class Work, class Failed>
[[nodiscard]] auto guarded(Work work, Failed failed) {
    return [work = std::move(work), failed = std::move(failed)]() mutable {
        try {
            work();
            return;
        } catch (...) {
            // Reported below, once the exception has been freed.
        }
        try {
            failed();
        } catch (...) {
            // Not even the failure can be reported.
        }
    };
}

/// Runs the work on a detached thread. That no thread can be started is a failure too.
template <class Work, class Failed>
void runDetached(Work work, Failed failed) {
    try {
        std::thread(guarded(std::move(work), failed)).detach();
    } catch (const std::system_error&) {
        failed();
    }
}

}  // namespace foundation
