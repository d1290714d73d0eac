// SPDX-License-Identifier: MIT
#include "identity/contacts/contact_table.h"

namespace vell {
namespace {

constexpr qsizetype usualAddresses = 1000;

}  // namespace

ContactTable::ContactTable(Logger& log, ContactPictureCache* pictures)
    : log_(log), pictures_(pictures) {
    table_.reserve(usualAddresses);
}

ContactsStore::Info ContactTable::infoOf(const ContactRecord& contact) const {
    ContactsStore::Info info;
    info.id = contact.identifier;
    info.name = *contact.name;
    if (!contact.nickname.isEmpty()) info.nick = contact.nickname;
    for (auto at = contact.thumbnails.begin(); pictures_ && at != contact.thumbnails.end(); ++at) {
        info.image = pictures_->picture(*at);
        if (info.image) break;
    }
    return info;
}

template <class... Values>
bool ContactTable::fileUnder(const QString& address, const ContactsStore::Info& info,
                             const char* duplicateMessage, const Values&... values) {
    const qsizetype before = table_.size();
    ContactsStore::Info& entry = table_[address];
    if (table_.size() > before) {
        entry = info;
        entry.address = address;
        return true;
    }
    if (entry.id != info.id) log_.log(duplicateMessage, address, values..., info.name, entry.name);
    return false;
}

void ContactTable::file(const ContactRecord& contact) {
    if (!contact.name) {
        log_.log("Contact has no name:", contact.identifier);
        return;
    }
    if (contact.instantMessageAddresses.empty() && contact.phoneNumbers.empty() &&
        contact.emailAddresses.empty())
        return;  // its picture needn't be decoded

    ContactsStore::Info info = infoOf(contact);
    for (const auto& address : contact.instantMessageAddresses)
        fileUnder(address.userName, info, "Duplicate chat user name in contacts:", address.service);
    for (const auto& number : contact.phoneNumbers) {
        const QString& written = number.stringValue;
        if (!fileUnder(written, info, "Duplicate phone number in contacts:", number)) continue;
        if (!written.contains(u' ') && !written.contains(u'-')) continue;
        QString cleaned = written;
        cleaned.remove(u' ').remove(u'-');
        info.address = written;
        table_.insert(cleaned, info);
    }
    for (const QString& address : contact.emailAddresses)
        fileUnder(address, info, "Duplicate email in contacts:");
}

}  // namespace vell
