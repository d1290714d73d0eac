#pragma once
// SPDX-License-Identifier: MIT
//
// What a sender is called, on screen and in exported text alike.

#include <QString>

namespace vell {

class ContactsStore;
struct TesselUserID;

/// The contact's nickname, else its name, else the user id itself; the service is never shown.
[[nodiscard]] QString senderName(const TesselUserID& sender, const ContactsStore& contacts);

}  // namespace vell
