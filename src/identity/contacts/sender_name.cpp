// SPDX-License-Identifier: MIT
#include "identity/contacts/sender_name.h"

#include "identity/contacts/contacts_store.h"
#include "transcript/user_id.h"

namespace vell {

QString senderName(const TesselUserID& sender, const ContactsStore& contacts) {
    const auto contact = contacts.addressToContact().constFind(sender.userID);
    if (contact == contacts.addressToContact().cend()) return sender.userID;
    return contact->nick.value_or(contact->name);
}

}  // namespace vell
