#pragma once
// SPDX-License-Identifier: MIT
//
// Which files hold contacts, and whether they are still the ones that were read.

#include <QByteArray>
#include <QStringList>
#include <stop_token>

namespace vell {

struct ContactFiles {
    QStringList files;    ///< in the order they are read in
    QStringList folders;  ///< those searched, and the parents of given files and missing paths
    /// Differs when any file was added, removed, replaced or written to.
    QByteArray fingerprint;
};

/// Finds vCard files: the paths that are files, whatever they are called, and *.vcf and *.vcard
/// anywhere in those that are folders, hidden ones excepted, by name. May block as long as the disk
/// does.
[[nodiscard]] ContactFiles findContactFiles(const QStringList& paths,
                                            const std::stop_token& stop = {});

}  // namespace vell
