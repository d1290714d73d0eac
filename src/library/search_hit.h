#pragma once
// SPDX-License-Identifier: MIT
//
// SearchHit: a message that was found, and where.

#include <QByteArray>
#include <functional>
#include <optional>
#include <vector>

#include "library/conversation.h"

namespace vell {

struct FoundMessage {
    qint64 sequence = 0;
    foundation::Date date;
    std::optional<TesselUserID> sender;
    quint8 kinds = 0;
    QString text;
};

struct SearchHit {
    QByteArray path;
    FoundMessage message;
    /// Its neighbours in the file, as many as were asked for.
    std::vector<FoundMessage> before;
    std::vector<FoundMessage> after;
};

/// Newest first; what was sent at the same time by path.
[[nodiscard]] bool isNewer(const SearchHit& a, const SearchHit& b);

struct SearchScope {
    /// Canonical paths: nothing else is searched.
    std::vector<std::string> folders;
    bool bestFirst = false;  ///< by Query::rank, and each rank newest first
    int context = 0;         ///< neighbours on each side
    /// What a person is called besides their account.
    std::function<QString(const TesselUserID&)> nameOf;
};

/// Whether the account or the name of the person contains what was typed, folded as texts are.
[[nodiscard]] bool isNamed(const TesselUserID& person, const QString& typed,
                           const SearchScope& scope);

/// Takes hits in their order; false ends the search.
using TakeHit = std::function<bool(const SearchHit& hit)>;

}  // namespace vell
