#pragma once
// SPDX-License-Identifier: MIT
//
// Some years of Nora's invented chats, for screenshots.

#include <QString>

#include "identity/contacts/contacts_store.h"

namespace screenshots {

/// Writes a file for each conversation.
void writeChats(const QString& folder);
[[nodiscard]] vell::ContactsStore::Table contacts();

}  // namespace screenshots
