#pragma once
// SPDX-License-Identifier: MIT
//
// Identifies a user of a transcript: a service and the account name on it.

#include <QHash>
#include <QSet>
#include <QString>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace vell {

/// Whether two texts are equal; quick for those that share their characters.
[[nodiscard]] inline bool isSameText(const QString& a, const QString& b) {
    return (a.constData() == b.constData() && a.size() == b.size()) || a == b;
}

struct TesselServiceID {
    QString rawValue;  ///< as archived: "AIM", "Jabber", "iMessage" …

    static const TesselServiceID aim;
    static const TesselServiceID jabber;

    [[nodiscard]] QString description() const;  ///< "<AIM>"

    friend bool operator==(const TesselServiceID& a, const TesselServiceID& b) {
        return isSameText(a.rawValue, b.rawValue);
    }
    friend size_t qHash(const TesselServiceID& service, size_t seed = 0) {
        return ::qHash(service.rawValue, seed);
    }
};

struct TesselUserID {
    TesselServiceID serviceID;
    QString userID;  ///< screen name, e-mail address or phone number

    [[nodiscard]] QString description() const;  ///< "<@alice (AIM)>"

    friend bool operator==(const TesselUserID& a, const TesselUserID& b) {
        return a.serviceID == b.serviceID && isSameText(a.userID, b.userID);
    }
    friend size_t qHash(const TesselUserID& user, size_t seed = 0) {
        return qHashMulti(seed, user.serviceID, user.userID);
    }
};

/// A user that many events share, or none; reads like an optional at a third of its size. The hash
/// is kept with it, so that neither hashing nor comparing depends on the length of the names.
class SharedUserID {
  public:
    SharedUserID() = default;
    SharedUserID(std::nullopt_t) {}
    SharedUserID(TesselUserID user) : shared_(std::make_shared<const Shared>(std::move(user))) {}
    SharedUserID(const std::optional<TesselUserID>& user) {
        if (user) *this = *user;
    }
    operator std::optional<TesselUserID>() const {
        return shared_ ? std::optional(shared_->user) : std::nullopt;
    }

    [[nodiscard]] bool has_value() const { return shared_ != nullptr; }
    explicit operator bool() const { return has_value(); }
    const TesselUserID& operator*() const { return shared_->user; }
    const TesselUserID* operator->() const { return &shared_->user; }

    friend bool operator==(const SharedUserID& a, const SharedUserID& b) {
        if (a.shared_ == b.shared_) return true;
        return a && b && a.shared_->hash == b.shared_->hash && *a == *b;
    }
    friend size_t qHash(const SharedUserID& user, size_t seed = 0) {
        return ::qHash(user ? user.shared_->hash : 0, seed);
    }

  private:
    struct Shared {
        explicit Shared(TesselUserID id) : user(std::move(id)), hash(qHash(user)) {}
        const TesselUserID user;
        const size_t hash;
    };
    std::shared_ptr<const Shared> shared_;
};

/// The users by service, then user id, both by code unit: the order in every text made of a set.
[[nodiscard]] std::vector<TesselUserID> sorted(const QSet<TesselUserID>& users);

}  // namespace vell
