// SPDX-License-Identifier: MIT
#include "identity/vcard/vcard_source.h"

#include <QDir>
#include <QStandardPaths>
#include <utility>

#include "identity/contacts/contact_table.h"
#include "identity/vcard/contact_files.h"
#include "identity/vcard/file_watch.h"
#include "identity/vcard/vcard_contacts.h"
#include "toolkit/callback_guard.h"
#include "toolkit/module_logger.h"

namespace vell {
namespace {

std::shared_ptr<Logger> cardLogger(const std::shared_ptr<Logger>& parent) {
    return std::make_shared<ModuleLogger>(parent, QStringLiteral("vCard"));
}

}  // namespace

VCardSource::VCardSource(QStringList paths, Chosen chosen, std::shared_ptr<Logger> log)
    : paths_(std::move(paths)),
      chosen_(chosen),
      log_(std::move(log)),
      cardLog_(cardLogger(log_)),
      callbacks_(std::make_shared<CallbackGuard>(this)) {}

VCardSource::~VCardSource() {
    callbacks_->close();
}

QStringList VCardSource::customaryFolders() {
    return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                QStringLiteral("/contacts"),
            QDir::homePath() + QStringLiteral("/.contacts")};
}

void VCardSource::setPaths(const QStringList& paths) {
    if (paths_ == paths) return;
    paths_ = paths;
    Q_EMIT contactsChanged();
}

ContactsSource::Enumeration VCardSource::enumeration() {
    if (!watch_)
        watch_ = std::make_shared<FileWatch>([this, callbacks = callbacks_] {
            // Runs only while `this` exists.
            callbacks->post([this] { Q_EMIT contactsChanged(); });
        });
    return [paths = paths_, log = log_, cardLog = cardLog_, watch = watch_](
               const ContactHandler& handle, const std::stop_token& stop) {
        const ContactFiles found = findContactFiles(paths, stop);
        watch->watch(paths, found);
        for (const QString& file : found.files) {
            const auto problem =
                readVCardFile(file, ContactPictures::wanted, *cardLog, handle, stop);
            if (problem) log->error("Could not read contacts:", file, *problem);
        }
    };
}

ContactsStore::Table readContactTable(const QStringList& files,
                                      const std::shared_ptr<Logger>& log) {
    ContactTable table(*log);
    const std::shared_ptr<Logger> cardLog = cardLogger(log);
    for (const QString& file : files) {
        const auto problem =
            readVCardFile(file, ContactPictures::unwanted, *cardLog,
                          [&](const ContactRecord& contact) { table.file(contact); });
        if (problem) throw ContactsError(file + QStringLiteral(": ") + *problem);
    }
    return table.take();
}

}  // namespace vell
