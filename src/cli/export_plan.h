#pragma once
// SPDX-License-Identifier: MIT
//
// ExportPlan: which transcripts a run exports, in order: the files that were given, and those found
// in the folders that were given, sorted by path.

#include <sys/types.h>

#include <QSet>
#include <QString>
#include <functional>
#include <utility>
#include <vector>

#include "cli/options.h"

namespace vell {

struct ExportJob {
    std::size_t number = 0;  ///< its place in the plan
    QString file;            ///< "-" is standard input
    /// Of a file that was found: its folder as it is mirrored, beginning with the name of the
    /// folder that was given.
    QString folder{};
    /// What is made of it, as a path without an extension below whatever it is made in; unique.
    QString name{};
    QString document{};  ///< where the document goes; empty in a stream
    qint64 size = 0;     ///< of the file
};

struct UnreadableFolder {
    QString path;
    QString reason;
};

struct ExportPlan {
    using FileIdentity = std::pair<dev_t, ino_t>;

    std::vector<ExportJob> jobs;
    std::vector<UnreadableFolder> unreadable;
    QSet<FileIdentity> transcripts;  ///< never to be written to
    mode_t permissions = 0666;       ///< that all of these files grant
    bool hasFolders = false;         ///< some were given

    /// Whether each line has to say which file it is about.
    [[nodiscard]] bool isForSeveral() const { return hasFolders || jobs.size() > 1; }
};

/// Looks through the folders. `onFound` is told how many transcripts there are so far.
[[nodiscard]] ExportPlan makePlan(const Options& options,
                                  const std::function<void(qsizetype count)>& onFound);

}  // namespace vell
