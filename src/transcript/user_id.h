#pragma once
// SPDX-License-Identifier: MIT
//
// Who somebody is in a transcript: a service and the account name on it.

#include <QHash>
#include <QSet>
#include <QString>
#include <vector>

namespace vell {

struct TesselServiceID {
    QString rawValue;  ///< as archived: "AIM", "Jabber", "iMessage" …

    static const TesselServiceID aim;
    static const TesselServiceID jabber;

    [[nodiscard]] QString description() const;  ///< "<AIM>"

    friend bool operator==(const TesselServiceID&, const TesselServiceID&) = default;
    friend size_t qHash(const TesselServiceID& service, size_t seed = 0) {
        return ::qHash(service.rawValue, seed);
    }
};

struct TesselUserID {
    TesselServiceID serviceID;
    QString userID;  ///< screen name, e-mail address or phone number

    [[nodiscard]] QString description() const;  ///< "<@alice (AIM)>"

    friend bool operator==(const TesselUserID&, const TesselUserID&) = default;
    friend size_t qHash(const TesselUserID& user, size_t seed = 0) {
        return qHashMulti(seed, user.serviceID, user.userID);
    }
};

/// The users by service, then user id, both by code unit: the order wherever a set becomes text.
[[nodiscard]] std::vector<TesselUserID> sorted(const QSet<TesselUserID>& users);

}  // namespace vell
