// SPDX-License-Identifier: MIT
#include "library/file_list.h"

namespace vell {

std::vector<BrokenFile> brokenFilesIn(LibraryStore& store) {
    std::vector<BrokenFile> result;
    Statement rows = store.database().prepare(
        "SELECT path, reason FROM files WHERE reason IS NOT NULL ORDER BY path");
    while (rows.step())
        result.push_back({rows.bytes(0), rows.text(1)});
    return result;
}

std::vector<FileCopies> copiesIn(LibraryStore& store) {
    std::vector<FileCopies> result;
    // What couldn't be read has no hash.
    Statement rows = store.database().prepare(
        "SELECT path, first FROM files JOIN"
        " (SELECT hash, min(path) AS first FROM files WHERE hash <> x'' GROUP BY hash"
        " HAVING count(*) > 1) USING (hash) ORDER BY first, path");
    while (rows.step()) {
        if (rows.bytes(0) == rows.bytes(1)) result.emplace_back();
        result.back().paths.push_back(rows.bytes(0));
    }
    return result;
}

FileCounts fileCountsIn(LibraryStore& store) {
    Statement row = store.database().prepare(
        "SELECT count(*), count(reason), count(nullif(hash, x'')) - count(DISTINCT nullif(hash, "
        "x'')),"
        " (SELECT sum(count) FROM stretches) FROM files");
    row.step();
    const FileCounts counts{row.integer(0), row.integer(1), row.integer(2), row.integer(3)};
    row.reset();
    return counts;
}

}  // namespace vell
