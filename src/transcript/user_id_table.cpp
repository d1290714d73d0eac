// SPDX-License-Identifier: MIT
#include "transcript/user_id_table.h"

#include "foundation/error.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

/// Hashing shorter names is no more expensive than looking up their characters.
constexpr qsizetype longName = 64;

}  // namespace

UserIDTable::UserIDTable(qsizetype fileSize)
    : unitsLeft_(static_cast<quint64>(fileSize) * 8 + (quint64(32) << 20)) {}

SharedUserID UserIDTable::shared(const TesselUserID& user) {
    const qsizetype length = user.serviceID.rawValue.size() + user.userID.size();
    const std::pair characters(user.serviceID.rawValue.constData(), user.userID.constData());
    if (length >= longName) {
        const auto known = byCharacters_.find(characters);
        if (known != byCharacters_.end()) return known->second.shared;
        if (static_cast<quint64>(length) > unitsLeft_)
            throw foundation::coderError(foundation::CoderErrorCode::readCorrupt,
                                         u"the names expand to more than their data can hold"_s);
        unitsLeft_ -= static_cast<quint64>(length);
    }
    SharedUserID& shared = byContent_[user];
    if (!shared) shared = SharedUserID(user);
    if (length >= longName) byCharacters_.emplace(characters, Known{user, shared});
    return shared;
}

}  // namespace vell
