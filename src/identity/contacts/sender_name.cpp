// SPDX-License-Identifier: MIT
#include "identity/contacts/sender_name.h"

#include "transcript/user_id.h"

namespace vell {

QString senderName(const TesselUserID& sender, const ContactsStore& contacts) {
    return senderName(sender, contacts.addressToContact());
}

QString senderName(const TesselUserID& sender, const ContactsStore::Table& contacts) {
    const auto contact = contacts.constFind(sender.userID);
    if (contact == contacts.cend()) return sender.userID;
    return contact->nick.value_or(contact->name);
}

}  // namespace vell
