#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryPeople: a library's conversations by whom they are with: a person, under all of their
// addresses, or a group. Immutable once made; windows and threads share it.

#include <QHash>
#include <QString>
#include <memory>
#include <vector>

#include "identity/contacts/contacts_store.h"
#include "library/library_contents.h"
#include "library/person_aliases.h"

namespace vell {

/// Somebody that conversations were held with.
struct LibraryPartner {
    /// Those in it, as indexes of the addresses that stand for them; none for notes to oneself.
    std::vector<int> persons;
    QString name;
    /// Indexes of conversations, the latest first.
    std::vector<int> conversations;
    qint64 messages = 0;
    foundation::Date last;
    /// Names and addresses of all in it, a line each.
    QString searched;
    QString searchedFolded;  ///< as foldedText() makes it
};

struct LibraryPeople {
    LibraryContents contents;
    std::vector<int> personOf;             ///< for each address the one that stands for its person
    std::vector<LibraryPartner> partners;  ///< the latest first
    qint64 messages = 0;

    LibraryPeople(LibraryContents contents, const PersonAliases& aliases,
                  const ContactsStore::Table& contacts);

    [[nodiscard]] const TesselUserID& addressAt(int index) const {
        return contents.people[static_cast<std::size_t>(index)];
    }
    /// All addresses of the person who has this one; the one that stands for them first.
    [[nodiscard]] PersonAliases::Addresses addressesOf(const TesselUserID& address) const;
    /// The conversation in the file; -1 for an unknown file.
    [[nodiscard]] int conversationAt(const QByteArray& path) const {
        return byPath_.value(path, -1);
    }
    /// The files of a partner's conversations, the earliest first.
    [[nodiscard]] std::vector<QByteArray> pathsOf(int partner) const;
    /// What the person with this address is called.
    [[nodiscard]] QString nameOf(int address) const;
    [[nodiscard]] int partnerOf(int conversation) const {
        return partnerOf_[static_cast<std::size_t>(conversation)];
    }
    /// What each address is known as: names and addresses of its person, a line each. What a
    /// search for people compares.
    [[nodiscard]] QHash<TesselUserID, QString> searchedNames() const;

  private:
    ContactsStore::Table contacts_;
    QHash<QByteArray, int> byPath_;
    std::vector<int> partnerOf_;

    [[nodiscard]] QString nameOf(const LibraryPartner& partner, int owner) const;
    /// Names and addresses, for each person.
    [[nodiscard]] std::vector<QString> searchedByPerson() const;
    void makePartners();
};

}  // namespace vell
