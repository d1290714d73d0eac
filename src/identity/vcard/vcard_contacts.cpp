// SPDX-License-Identifier: MIT
#include "identity/vcard/vcard_contacts.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <string>

#include "foundation/local_path.h"
#include "identity/vcard/vcard.h"
#include "toolkit/logger.h"

namespace vell {

namespace {

/// An address book of twenty thousand people with pictures takes a quarter of this.
constexpr qint64 largestFile = qint64{512} << 20;
/// Between two looks at whether anybody still wants the contacts.
constexpr qint64 pieceSize = qint64{4} << 20;

}  // namespace

qint64 readVCards(QByteArrayView file, const QString& origin, ContactPictures pictures, Logger& log,
                  const ContactHandler& handle, const std::stop_token& stop) {
    const std::string text = vcardText(file);
    VCardScanner scanner(text);
    qint64 number = 0, whole = 0;
    while (!stop.stop_requested() && scanner.nextCard()) {
        number++;
        std::optional<VCardContact> contact = contactFromVCard(scanner, pictures);
        if (!scanner.isWhole()) {
            const QString place = origin + u':' + QString::number(scanner.cardLine());
            log.warn("Skipped a malformed contact card:", place, "it has no end");
            continue;
        }
        whole++;
        if (!contact) continue;
        if (contact->record.identifier.isEmpty())
            contact->record.identifier = origin + u'#' + QString::number(number);
        handle(contact->record);
    }
    return whole;
}

std::optional<QString> readVCardFile(const QString& path, ContactPictures pictures, Logger& log,
                                     const ContactHandler& handle, const std::stop_token& stop) {
    QFile file(foundation::localPath(path));
    // Opening a pipe or a device would wait for somebody to write.
    if (QFileInfo info(file); info.exists() && !info.isFile())
        return QStringLiteral("Not a regular file");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return file.errorString();
    const qint64 size = file.size();
    if (size > largestFile) return QStringLiteral("Too large for an address book");
    QByteArray bytes(size, Qt::Uninitialized);
    qint64 read = 0;
    while (read < size && !stop.stop_requested()) {
        const qint64 count = file.read(bytes.data() + read, std::min(size - read, pieceSize));
        if (count < 0) return file.errorString();
        if (count == 0) break;
        read += count;
    }
    bytes.truncate(read);
    const qint64 cards = readVCards(bytes, path, pictures, log, handle, stop);
    if (cards == 0 && !stop.stop_requested())
        return QStringLiteral("There is no contact card in it");
    return std::nullopt;
}

}  // namespace vell
