#pragma once
// SPDX-License-Identifier: MIT
//
// The saved search for transcripts that comes with the program. Its presence decides whether "Find
// iChat Files …" is offered.

#include <QString>
#include <optional>

namespace vell {

/// The path of the saved search, looked up once; nothing if the resource is missing.
[[nodiscard]] const std::optional<QString>& searchQueryPath();

/// Opens the saved search with the desktop; returns whether a program took it. A missing search is
/// logged.
bool openSavedSearch();

}  // namespace vell
