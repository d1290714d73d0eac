#pragma once
// SPDX-License-Identifier: MIT
//
// All contacts in a stream or file of vCards. Cards that can't be read are told to the logger and
// left out.

#include <QString>
#include <functional>
#include <optional>
#include <stop_token>

#include "identity/contacts_source.h"
#include "identity/vcard_contact.h"
#include "identity/vcard_reader.h"

namespace vell {

class Logger;

/// Hands out each contact in the stream's order. A card without an identifier gets the origin and
/// its number in the stream for one. Pictures that aren't in the cards are left out.
void readVCards(const VCardReader::Source& source, const QString& origin, ContactPictures pictures,
                Logger& log, const ContactHandler& handle, const std::stop_token& stop = {});

/// The same for a regular file; answers why it can't be read, or nothing.
[[nodiscard]] std::optional<QString> readVCardFile(const QString& path, ContactPictures pictures,
                                                   Logger& log, const ContactHandler& handle,
                                                   const std::stop_token& stop = {});

}  // namespace vell
