#pragma once
// SPDX-License-Identifier: MIT
//
// SearchedNames: what a person is found by besides the address that a message came from: the names
// and addresses of all that are one person's. From any thread.

#include <QHash>
#include <QString>
#include <QStringList>

#include "identity/contacts/contacts_store.h"
#include "library/person_aliases.h"

namespace vell {

class SearchedNames {
  public:
    SearchedNames(PersonAliases aliases, ContactsStore::Table contacts);

    [[nodiscard]] QString of(const TesselUserID& address) const;

  private:
    const PersonAliases aliases_;
    const ContactsStore::Table contacts_;
    QHash<QString, QString> contactOf_;
    QHash<QString, QStringList> accountsOf_;  // by contact

    [[nodiscard]] PersonAliases::Addresses candidates(const TesselUserID& address) const;
};

}  // namespace vell
