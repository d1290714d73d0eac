#pragma once
// SPDX-License-Identifier: MIT
//
// UserIDTable: the users of one transcript. An archive may share a long name among thousands of
// people, and every comparison costs as much as the name is long; so people that share the
// characters are looked up once.

#include <QHash>
#include <map>
#include <utility>

#include "transcript/user_id.h"

namespace vell {

class UserIDTable {
  public:
    /// Of a file of this size, in bytes.
    explicit UserIDTable(qsizetype fileSize);

    /// The one shared id of the user. Throws foundation::Error when the names of all users together
    /// are out of proportion to the file, as when all are on one service with a long name.
    [[nodiscard]] SharedUserID shared(const TesselUserID& user);

  private:
    struct Known {
        TesselUserID user;  // keeps the addresses of its characters in use
        SharedUserID shared;
    };
    quint64 unitsLeft_;
    std::map<std::pair<const QChar*, const QChar*>, Known> byCharacters_;
    QHash<TesselUserID, SharedUserID> byContent_;
};

}  // namespace vell
