#pragma once
// SPDX-License-Identifier: MIT
//
// The files of a library as people are shown them: which couldn't be read, and why; which are
// copies of others.
//
//     for (const BrokenFile& file : brokenFilesIn(store)) show(file.path, file.reason);

#include "library/library_store.h"

namespace vell {

struct BrokenFile {
    QByteArray path;
    QString reason;  ///< in plain words
};
/// By path. They are tried again when they have changed.
[[nodiscard]] std::vector<BrokenFile> brokenFilesIn(LibraryStore& store);

struct FileCopies {
    /// At least two with the same bytes, by path. Searches find the messages of each.
    std::vector<QByteArray> paths;
};
/// By the path of the first one.
[[nodiscard]] std::vector<FileCopies> copiesIn(LibraryStore& store);

struct FileCounts {
    qint64 files = 0;
    qint64 broken = 0;
    /// Files beyond the first of each content.
    qint64 copies = 0;
    qint64 messages = 0;
};
[[nodiscard]] FileCounts fileCountsIn(LibraryStore& store);

}  // namespace vell
