#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsStore: which person in the address book is behind a chat address. Lookups are exact and
// cheap enough for every row that is painted.

#include <QHash>
#include <QString>
#include <optional>
#include <utility>

namespace vell {

class ContactsStore {
  public:
    /// One contact under one of its addresses.
    struct Info {
        QString id;       ///< the contact's identifier in its address book
        QString address;  ///< the address this record is filed under, as the address book holds it
        QString name;
        std::optional<QString> nick;  ///< never empty

        friend bool operator==(const Info&, const Info&) = default;
        friend size_t qHash(const Info& v, size_t seed = 0) {
            return qHashMulti(seed, v.id, v.address, v.name, v.nick.value_or(QString()));
        }
    };
    using Table = QHash<QString, Info>;

    /// Nobody is known.
    ContactsStore() = default;
    explicit ContactsStore(Table addressToContact)
        : addressToContact_(std::move(addressToContact)) {}
    ContactsStore(const ContactsStore&) = delete;
    ContactsStore& operator=(const ContactsStore&) = delete;

    [[nodiscard]] const Table& addressToContact() const { return addressToContact_; }

  private:
    Table addressToContact_;
};

}  // namespace vell
