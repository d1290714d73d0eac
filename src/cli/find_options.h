#pragma once
// SPDX-License-Identifier: MIT
//
// What vell-find is to do, from its arguments.

#include <QStringList>
#include <string>
#include <vector>

#include "cli/standard_streams.h"
#include "library/query.h"

namespace vell {

/// A folder to search: as it was given, and where it really is.
struct SearchedFolder {
    QByteArray given;
    std::string canonical;
};

struct FindOptions {
    Query query;
    /// Never empty; may be files.
    std::vector<SearchedFolder> folders;
    QStringList contacts;  ///< vCard files
    int context = 0;
    bool bestFirst = false;
    bool writesJson = false;
    bool counts = false;
    bool usesIndex = true;
};

/// Reads the arguments. Throws UsageError or Information.
[[nodiscard]] FindOptions parseFindOptions(const QStringList& arguments);

}  // namespace vell
