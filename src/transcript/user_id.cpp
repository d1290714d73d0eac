// SPDX-License-Identifier: MIT
#include "transcript/user_id.h"

#include <algorithm>
#include <tuple>

namespace vell {

const TesselServiceID TesselServiceID::aim{QStringLiteral("AIM")};
const TesselServiceID TesselServiceID::jabber{QStringLiteral("Jabber")};

QString TesselServiceID::description() const {
    return u'<' + rawValue + u'>';
}

QString TesselUserID::description() const {
    return QStringLiteral("<@") + userID + QStringLiteral(" (") + serviceID.rawValue +
           QStringLiteral(")>");
}

std::vector<TesselUserID> sorted(const QSet<TesselUserID>& users) {
    std::vector<TesselUserID> result(users.begin(), users.end());
    std::sort(result.begin(), result.end(), [](const TesselUserID& a, const TesselUserID& b) {
        return std::tie(a.serviceID.rawValue, a.userID) < std::tie(b.serviceID.rawValue, b.userID);
    });
    return result;
}

}  // namespace vell
