#pragma once
// SPDX-License-Identifier: MIT
//
// directSearch: finds messages by reading all files, where there is no database to search in. It
// finds what LibrarySearch would.

#include <atomic>
#include <functional>

#include "library/file_reading.h"
#include "library/query.h"
#include "library/search_hit.h"

namespace vell {

/// Reads the scope's files on all cores, then hands over the hits in their order. Returns early
/// once `stop` is set. `onFile` is called after each file, with how many of how many were read.
void directSearch(const Query& query, const SearchScope& scope, const std::atomic<bool>& stop,
                  const std::function<void(qsizetype done, qsizetype all)>& onFile,
                  const TakeHit& take);

}  // namespace vell
