#pragma once
// SPDX-License-Identifier: MIT
//
// ContactTable: files contacts under their addresses. The first contact keeps an address; the
// cleaned form of a phone number, the written one without spaces and hyphens, is the exception:
// there the last one wins, silently.

#include <utility>

#include "identity/contacts/contact_picture.h"
#include "identity/contacts/contact_record.h"
#include "identity/contacts/contacts_store.h"
#include "toolkit/logger.h"

namespace vell {

class ContactTable {
  public:
    /// Logger and cache must outlive this; without a cache contacts get no pictures.
    explicit ContactTable(Logger& log, ContactPictureCache* pictures = nullptr);

    /// Files a contact; one without a name is skipped. Logs skipped contacts and
    /// addresses that belong to another contact already.
    void file(const ContactRecord& contact);

    [[nodiscard]] ContactsStore::Table take() { return std::move(table_); }

  private:
    /// Whether the address was free and is this contact's now.
    template <class... Values>
    bool fileUnder(const QString& address, const ContactsStore::Info& info,
                   const char* duplicateMessage, const Values&... values);

    [[nodiscard]] ContactsStore::Info infoOf(const ContactRecord& contact) const;

    Logger& log_;
    ContactPictureCache* const pictures_;
    ContactsStore::Table table_;
};

}  // namespace vell
