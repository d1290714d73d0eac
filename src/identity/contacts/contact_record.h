#pragma once
// SPDX-License-Identifier: MIT
//
// ContactRecord: one person as an address book has it, before anything is filed or decoded.

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace vell {

struct ContactRecord {
    struct InstantMessageAddress {
        QString userName;
        QString service;  ///< "AIM", "Jabber" …; empty when the address book has none
    };

    struct PhoneNumber {
        QString stringValue;  ///< as written
        /// "<PhoneNumber: +1 555 0100>"
        [[nodiscard]] QString description() const {
            return QStringLiteral("<PhoneNumber: ") + stringValue + u'>';
        }
    };

    QString identifier;           ///< unique in its address book and the same every time
    std::optional<QString> name;  ///< the full name for display; absent when there is none
    QString nickname;             ///< empty when there is none
    /// Encoded pictures, the most preferred first: the first that can be decoded counts.
    std::vector<QByteArray> thumbnails;
    std::vector<InstantMessageAddress> instantMessageAddresses;
    std::vector<PhoneNumber> phoneNumbers;
    std::vector<QString> emailAddresses;
};

}  // namespace vell
