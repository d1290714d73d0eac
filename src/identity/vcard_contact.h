#pragma once
// SPDX-License-Identifier: MIT
//
// What a vCard says of a person, for every source that has cards: files and the address-book
// service alike.

#include <QString>
#include <optional>
#include <string_view>

#include "identity/contact_record.h"

namespace vell {

enum class ContactPictures { wanted, unwanted };

struct VCardContact {
    /// The identifier is the card's UID, empty when it has none. The name is the formatted name,
    /// else made from the name's parts, else the organisation's, else the nickname.
    ContactRecord record;
    /// Where the picture is, when the card doesn't hold it: an address of any scheme.
    QString pictureLocation;
};

/// The contact of one whole card; nothing when the card is a group or a list of others.
[[nodiscard]] std::optional<VCardContact> contactFromVCard(std::string_view card,
                                                           ContactPictures pictures);

}  // namespace vell
