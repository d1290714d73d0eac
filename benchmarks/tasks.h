#pragma once
// SPDX-License-Identifier: MIT
//
// The work that is measured. Each task runs in a fresh process of this program, as it does for
// people: the first thing that a window does is to open a file. So no task finds the memory that
// another one has left behind.

#include <QString>
#include <optional>

namespace benchmarks {

enum class Task {
    libplist,   ///< plist_from_bin over the bytes
    load,       ///< from the bytes to the chat log
    markdown,   ///< from the chat log to Markdown
    read_file,  ///< from the file to the bytes
    load_file,  ///< from the file to the chat log
};

struct Cost {
    double seconds = 0;    ///< of the processor
    double peakBytes = 0;  ///< the most memory that the process ever had
};

/// What the task costs in a process of its own; nothing when it fails, or when this program was
/// built without libplist.
[[nodiscard]] std::optional<Cost> measure(Task task, const QString& path);

/// That process's main function.
int runTask(int argc, char** argv);
[[nodiscard]] bool isTask(int argc, char** argv);

}  // namespace benchmarks
