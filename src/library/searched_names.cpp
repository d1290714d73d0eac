// SPDX-License-Identifier: MIT
#include "library/searched_names.h"

#include <algorithm>
#include <utility>

#include "identity/contacts/sender_name.h"

namespace vell {

SearchedNames::SearchedNames(PersonAliases aliases, ContactsStore::Table contacts)
    : aliases_(std::move(aliases)), contacts_(std::move(contacts)) {
    for (auto each = contacts_.cbegin(); each != contacts_.cend(); ++each) {
        contactOf_.insert(each.key(), each->id);
        accountsOf_[each->id].append(each.key());
    }
}

/// The address, and those that may be the same person's.
PersonAliases::Addresses SearchedNames::candidates(const TesselUserID& address) const {
    PersonAliases::Addresses result{address};
    const auto add = [&result](const TesselUserID& other) {
        if (std::find(result.begin(), result.end(), other) == result.end()) result.push_back(other);
    };
    for (const PersonAliases::Addresses& group : aliases_.joined())
        std::for_each(group.begin(), group.end(), add);
    for (std::size_t i = 0; i < result.size(); ++i) {
        const TesselUserID known = result[i];
        for (const QString& account : accountsOf_.value(contactOf_.value(known.userID)))
            add({known.serviceID, account});
    }
    return result;
}

QString SearchedNames::of(const TesselUserID& address) const {
    const PersonAliases::Addresses people = candidates(address);
    const std::vector<int> persons = aliases_.personOf(people, contactOf_);
    QString names;
    for (std::size_t i = 0; i < people.size(); ++i) {
        if (persons[i] == persons.front())
            names += senderName(people[i], contacts_) + u'\n' + people[i].userID + u'\n';
    }
    return names;
}

}  // namespace vell
