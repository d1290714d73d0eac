#pragma once
// SPDX-License-Identifier: MIT
//
// What a sender is called, on screen and in exported text alike.

#include <QString>

#include "identity/contacts/contacts_store.h"

namespace vell {

struct TesselUserID;

/// The contact's nickname, else its name, else the user id itself; the service is never shown.
[[nodiscard]] QString senderName(const TesselUserID& sender, const ContactsStore& contacts);
/// The same without the store, for other threads.
[[nodiscard]] QString senderName(const TesselUserID& sender, const ContactsStore::Table& contacts);

}  // namespace vell
