#pragma once
// SPDX-License-Identifier: MIT
//
// The desktop's own list of recently used files, an XBEL document in the user's data folder that
// all programs share. Entries of other programs are kept as they are; a list that can't be read is
// not changed.

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

namespace vell::recentlyUsed {

/// Adds the file to the desktop's list, or makes it its newest entry.
void add(const QString& path);
/// Removes our registration from every entry, and the entries that have no other registration.
void removeOwn();

/// The list with an entry of ours for the address (a percent-encoded file URL), or nothing when the
/// document is malformed. For an empty document, a new list.
[[nodiscard]] std::optional<QByteArray> withEntry(const QByteArray& document,
                                                  const QString& address, const QDateTime& when);
/// The list without our registrations, or nothing when the document is malformed.
[[nodiscard]] std::optional<QByteArray> withoutOwnEntries(const QByteArray& document);

}  // namespace vell::recentlyUsed
