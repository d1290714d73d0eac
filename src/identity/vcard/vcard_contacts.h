#pragma once
// SPDX-License-Identifier: MIT
//
// What vCards say of people, for every source that has cards: files and the address-book service
// alike. Cards that can't be read are logged and left out.

#include <QByteArray>
#include <QString>
#include <optional>
#include <stop_token>

#include "identity/contacts/contacts_source.h"

namespace vell {

class Logger;

enum class ContactPictures { wanted, unwanted };

struct VCardContact {
    /// The identifier is the card's UID, empty when it has none. The name is the formatted name,
    /// else made from the name's parts, else the organisation's, else the nickname.
    ContactRecord record;
    /// Where the picture is, when the card doesn't hold it: an address of any scheme.
    QString pictureLocation;
};

/// The contact of the first card; nothing when that is a group or a list of others.
[[nodiscard]] std::optional<VCardContact> contactFromVCard(QByteArray card);

/// Hands out each contact in the file's order and returns how many whole cards there were, groups
/// included. A card without an identifier gets the origin and its number in the file for one.
/// Pictures that aren't in the cards are left out.
qint64 readVCards(QByteArray file, const QString& origin, ContactPictures pictures, Logger& log,
                  const ContactHandler& handle, const std::stop_token& stop = {});

/// The same for a regular file of at most 512 MiB; returns why it can't be read or holds no card,
/// or nothing.
[[nodiscard]] std::optional<QString> readVCardFile(const QString& path, ContactPictures pictures,
                                                   Logger& log, const ContactHandler& handle,
                                                   const std::stop_token& stop = {});

}  // namespace vell
