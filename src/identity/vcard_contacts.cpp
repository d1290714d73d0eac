// SPDX-License-Identifier: MIT
#include "identity/vcard_contacts.h"

#include <QFile>
#include <QFileInfo>
#include <optional>

#include "foundation/local_path.h"
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

std::optional<QString> readVCardFile(const QString& path, ContactPictures pictures, Logger& log,
                                     const ContactHandler& handle, const std::stop_token& stop) {
    QFile file(foundation::localPath(path));
    // Opening a pipe or a device would wait for somebody to write.
    if (QFileInfo info(file); info.exists() && !info.isFile())
        return QStringLiteral("Not a regular file");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return file.errorString();
    bool failed = false;
    const auto source = [&](char* buffer, size_t size) -> size_t {
        if (stop.stop_requested()) return 0;
        const qint64 count = file.read(buffer, static_cast<qint64>(size));
        failed = count < 0;
        return failed ? 0 : static_cast<size_t>(count);
    };
    readVCards(source, path, pictures, log, handle, stop);
    return failed ? std::optional(file.errorString()) : std::nullopt;
}

}  // namespace vell
