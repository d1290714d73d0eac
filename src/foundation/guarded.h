#pragma once
// SPDX-License-Identifier: MIT
//
// The root of every thread that works on files: what the work throws, being out of memory included,
// is that work's failure and never ends the program.
//
//     foundation::runDetached([=] { read(path); }, [=] { tellFailure(path); });

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
            // Told below, when what was thrown has given its memory back.
        }
        try {
            failed();
        } catch (...) {
            // Nothing is left to tell it with.
        }
    };
}

/// Runs the work on a thread that nobody waits for. That no thread can be had is a failure too.
template <class Work, class Failed>
void runDetached(Work work, Failed failed) {
    try {
        std::thread(guarded(std::move(work), failed)).detach();
    } catch (const std::system_error&) {
        failed();
    }
}

}  // namespace foundation
