// SPDX-License-Identifier: MIT
#include "identity/vcard_contacts.h"

#include <QFile>
#include <QFileInfo>
#include <optional>

#include "toolkit/logger.h"

namespace vell {

void readVCards(const VCardReader::Source& source, const QString& origin, ContactPictures pictures,
                Logger& log, const ContactHandler& handle, const std::stop_token& stop) {
    VCardReader reader(source);
    qint64 number = 0;
    while (const std::optional<VCardReader::Item> item = reader.next()) {
        if (stop.stop_requested()) return;
        number++;
        if (item->defect != VCardReader::Defect::none) {
            const QString place = origin + u':' + QString::number(item->line);
            log.warn("Skipped a malformed contact card:", place, name(item->defect));
            continue;
        }
        std::optional<VCardContact> contact = contactFromVCard(item->card, pictures);
        if (!contact) continue;
        if (contact->record.identifier.isEmpty())
            contact->record.identifier = origin + u'#' + QString::number(number);
        handle(contact->record);
    }
}

void readVCardFile(const QString& path, ContactPictures pictures, Logger& log,
                   const ContactHandler& handle, const std::stop_token& stop) {
    QFile file(path);
    // Opening a pipe or a device would wait for somebody to write.
    const bool isOpen =
        QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    bool failed = !isOpen;
    const auto source = [&](char* buffer, size_t size) -> size_t {
        if (stop.stop_requested()) return 0;
        const qint64 count = file.read(buffer, static_cast<qint64>(size));
        failed = count < 0;
        return failed ? 0 : static_cast<size_t>(count);
    };
    if (isOpen) readVCards(source, path, pictures, log, handle, stop);
    if (failed) log.warn("Could not read contacts:", path, file.errorString());
}

}  // namespace vell
