#pragma once
// SPDX-License-Identifier: MIT
//
// Who somebody is in a transcript: a service and the account name on it.

#include <QHash>
#include <QSet>
#include <QString>
#include <memory>
#include <optional>
#include <utility>
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

/// A user that many events share, or nobody; reads like an optional at a third of its size.
class SharedUserID {
  public:
    SharedUserID() = default;
    SharedUserID(std::nullopt_t) {}
    SharedUserID(TesselUserID user)
        : user_(std::make_shared<const TesselUserID>(std::move(user))) {}
    SharedUserID(const std::optional<TesselUserID>& user) {
        if (user) *this = *user;
    }
    operator std::optional<TesselUserID>() const {
        return user_ ? std::optional(*user_) : std::nullopt;
    }

    [[nodiscard]] bool has_value() const { return user_ != nullptr; }
    explicit operator bool() const { return has_value(); }
    const TesselUserID& operator*() const { return *user_; }
    const TesselUserID* operator->() const { return user_.get(); }

    friend bool operator==(const SharedUserID& a, const SharedUserID& b) {
        return a.user_ == b.user_ || (a && b && *a == *b);
    }

  private:
    std::shared_ptr<const TesselUserID> user_;
};

/// The users by service, then user id, both by code unit: the order wherever a set becomes text.
[[nodiscard]] std::vector<TesselUserID> sorted(const QSet<TesselUserID>& users);

}  // namespace vell
