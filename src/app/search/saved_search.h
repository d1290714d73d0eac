#pragma once
// SPDX-License-Identifier: MIT
//
// The saved search for transcripts that comes with the program. Its presence decides whether "Find
// iChat Files …" is offered.

#include <QString>
#include <optional>

namespace vell {

/// Where the saved search lies, looked up once; nothing when the resource is missing.
[[nodiscard]] const std::optional<QString>& searchQueryPath();

/// Has the desktop open the saved search; answers whether a program for it took it. A missing
/// search is logged.
bool openSavedSearch();

}  // namespace vell
