#pragma once
// SPDX-License-Identifier: MIT
//
// What a vCard says of a person, for every source that has cards: files and the address-book
// service alike.

#include <QString>
#include <optional>
#include <string_view>

#include "identity/contacts/contact_record.h"

namespace vell {

class VCardScanner;

enum class ContactPictures { wanted, unwanted };

struct VCardContact {
    /// The identifier is the card's UID, empty when it has none. The name is the formatted name,
    /// else made from the name's parts, else the organisation's, else the nickname.
    ContactRecord record;
    /// Where the picture is, when the card doesn't hold it: an address of any scheme.
    QString pictureLocation;
};

/// The contact of the card that the scanner has come to, read to its end; nothing when the card is
/// a group or a list of others.
[[nodiscard]] std::optional<VCardContact> contactFromVCard(VCardScanner& scanner,
                                                           ContactPictures pictures);
/// The contact of a text's first card.
[[nodiscard]] std::optional<VCardContact> contactFromVCard(std::string_view text,
                                                           ContactPictures pictures);

}  // namespace vell
