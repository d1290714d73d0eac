#pragma once
// SPDX-License-Identifier: MIT
//
// All contacts in a file of vCards. Cards that can't be read are logged and left out.

#include <QByteArrayView>
#include <QString>
#include <optional>
#include <stop_token>

#include "identity/contacts/contacts_source.h"
#include "identity/vcard/vcard_contact.h"

namespace vell {

class Logger;

/// Hands out each contact in the file's order and returns how many whole cards there were, groups
/// included. A card without an identifier gets the origin and its number in the file for one.
/// Pictures that aren't in the cards are left out.
qint64 readVCards(QByteArrayView file, const QString& origin, ContactPictures pictures, Logger& log,
                  const ContactHandler& handle, const std::stop_token& stop = {});

/// The same for a regular file of at most 512 MiB; returns why it can't be read or holds no card,
/// or nothing.
[[nodiscard]] std::optional<QString> readVCardFile(const QString& path, ContactPictures pictures,
                                                   Logger& log, const ContactHandler& handle,
                                                   const std::stop_token& stop = {});

}  // namespace vell
