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
    libplist,       ///< plist_from_bin over the bytes
    load,           ///< from the bytes to the chat log
    markdown_text,  ///< from the chat log to Markdown as one text
    read_file,      ///< from the file to the bytes
    load_file,      ///< from the file to the chat log
    // From the file to a document that nothing keeps, in the order of vell::formats().
    markdown,
    text,
    html,
    json,
    json_lines,
    csv,
};

struct Cost {
    double seconds = 0;  ///< of the processor
    /// The most memory that the process ever had; of a document, beyond what it had before.
    double peakBytes = 0;
};

/// What the task costs in a process of its own; nothing when it fails, or when this program was
/// built without libplist.
[[nodiscard]] std::optional<Cost> measure(Task task, const QString& path);

/// That process's main function.
int runTask(int argc, char** argv);
[[nodiscard]] bool isTask(int argc, char** argv);

}  // namespace benchmarks
