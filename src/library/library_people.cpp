// SPDX-License-Identifier: MIT
#include "library/library_people.h"

#include <QCollator>
#include <algorithm>
#include <map>

#include "identity/contacts/sender_name.h"
#include "library/query.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

QHash<QString, QString> contactOf(const ContactsStore::Table& contacts) {
    QHash<QString, QString> result;
    for (auto each = contacts.cbegin(); each != contacts.cend(); ++each)
        result.insert(each.key(), each->id);
    return result;
}

}  // namespace

LibraryPeople::LibraryPeople(LibraryContents given, const PersonAliases& aliases,
                             const ContactsStore::Table& contacts)
    : contents(std::move(given)),
      personOf(aliases.personOf(contents.people, contactOf(contacts))),
      contacts_(contacts) {
    makePartners();
}

void LibraryPeople::makePartners() {
    std::map<std::vector<int>, std::size_t> byPersons;
    for (int i = 0; i < static_cast<int>(contents.conversations.size()); ++i) {
        const LibraryConversation& conversation =
            contents.conversations[static_cast<std::size_t>(i)];
        const auto personAt = [this](int address) {
            return address < 0 ? -1 : personOf[static_cast<std::size_t>(address)];
        };
        std::vector<int> persons;
        for (const int other : conversation.others) {
            const int person = personAt(other);
            if (person != personAt(conversation.owner)) persons.push_back(person);
        }
        std::sort(persons.begin(), persons.end());
        persons.erase(std::unique(persons.begin(), persons.end()), persons.end());
        const auto [at, isNew] = byPersons.emplace(persons, partners.size());
        if (isNew) {
            partners.push_back({std::move(persons), {}, {}, 0, conversation.end, {}, {}});
            partners.back().name = nameOf(partners.back(), conversation.owner);
        }
        LibraryPartner& partner = partners[at->second];
        partner.conversations.push_back(i);
        partner.messages += conversation.messages;
        if (conversation.end.secondsSinceReferenceDate > partner.last.secondsSinceReferenceDate)
            partner.last = conversation.end;
        messages += conversation.messages;
    }
    std::stable_sort(partners.begin(), partners.end(), [](const auto& a, const auto& b) {
        return a.last.secondsSinceReferenceDate > b.last.secondsSinceReferenceDate;
    });
    const std::vector<QString> searched = searchedByPerson();
    for (LibraryPartner& partner : partners) {
        for (const int person : partner.persons)
            partner.searched += searched[static_cast<std::size_t>(person)];
        if (partner.persons.empty()) partner.searched = partner.name;
        partner.searchedFolded = foldedText(partner.searched);
    }
    partnerOf_.resize(contents.conversations.size());
    for (std::size_t partner = 0; partner < partners.size(); ++partner) {
        for (const int index : partners[partner].conversations) {
            const auto& conversation = contents.conversations[static_cast<std::size_t>(index)];
            partnerOf_[static_cast<std::size_t>(index)] = static_cast<int>(partner);
            byPath_.insert(conversation.path, index);
            for (const QByteArray& copy : conversation.copies)
                byPath_.insert(copy, index);
        }
    }
}

QString LibraryPeople::nameOf(int address) const {
    return shownText(senderName(addressAt(address), contacts_)).simplified();
}

QString LibraryPeople::nameOf(const LibraryPartner& partner, int owner) const {
    if (partner.persons.empty()) return owner < 0 ? QString() : nameOf(owner);
    QStringList names;
    for (const int person : partner.persons)
        names.append(nameOf(person));
    std::sort(names.begin(), names.end(), QCollator());
    return shownList(names, [](const QString& name) { return name; });
}

std::vector<QByteArray> LibraryPeople::pathsOf(int partner) const {
    const auto& indexes = partners[static_cast<std::size_t>(partner)].conversations;
    std::vector<QByteArray> result;
    for (auto index = indexes.rbegin(); index != indexes.rend(); ++index)
        result.push_back(contents.conversations[static_cast<std::size_t>(*index)].path);
    return result;
}

PersonAliases::Addresses LibraryPeople::addressesOf(const TesselUserID& address) const {
    const auto at = std::find(contents.people.begin(), contents.people.end(), address);
    if (at == contents.people.end()) return {address};
    const int person = personOf[static_cast<std::size_t>(at - contents.people.begin())];
    PersonAliases::Addresses result{addressAt(person)};
    for (std::size_t i = 0; i < personOf.size(); ++i) {
        if (personOf[i] == person && static_cast<int>(i) != person)
            result.push_back(contents.people[i]);
    }
    return result;
}

std::vector<QString> LibraryPeople::searchedByPerson() const {
    std::vector<QString> names(contents.people.size());
    for (std::size_t i = 0; i < contents.people.size(); ++i) {
        names[static_cast<std::size_t>(personOf[i])] +=
            nameOf(static_cast<int>(i)) + u'\n' + contents.people[i].userID + u'\n';
    }
    return names;
}

QHash<TesselUserID, QString> LibraryPeople::searchedNames() const {
    const std::vector<QString> names = searchedByPerson();
    QHash<TesselUserID, QString> result;
    for (std::size_t i = 0; i < contents.people.size(); ++i)
        result.insert(contents.people[i], names[static_cast<std::size_t>(personOf[i])]);
    return result;
}

}  // namespace vell
