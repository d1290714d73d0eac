// SPDX-License-Identifier: MIT
#include "app/windows/contacts_dialog.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <utility>

#include "identity/vcard/vcard_source.h"

namespace vell {

ContactsDialog::~ContactsDialog() {
    delete box_;
}

void ContactsDialog::ask(Answered answer) {
    waiting_.push_back(std::move(answer));
    if (box_) return;
    QStringList places;
    for (const QString& folder : VCardSource::customaryFolders())
        places.append(QStringLiteral("• ") + QDir::toNativeSeparators(folder));
    places.append(tr("• the desktop’s address books (Evolution)"));

    box_ = new QMessageBox(QMessageBox::Question, tr("Access to Your Contacts"),
                           tr("Vell would like to read your contacts to show names and pictures "
                              "instead of chat addresses."),
                           QMessageBox::NoButton, QApplication::activeWindow());
    box_->setObjectName(QStringLiteral("contactsPrompt"));
    box_->setAttribute(Qt::WA_DeleteOnClose);
    box_->setInformativeText(
        tr("Vell would read:\n%1\n\nNothing is written to them or sent anywhere. You "
           "can change this in the preferences.")
            .arg(places.join(u'\n')));
    const QAbstractButton* refuse = box_->addButton(tr("Don’t Allow"), QMessageBox::NoRole);
    const QAbstractButton* allow = box_->addButton(tr("Allow"), QMessageBox::AcceptRole);
    // For the Escape key and closing the dialog, too.
    box_->setEscapeButton(box_->addButton(tr("Not Now"), QMessageBox::RejectRole));
    QObject::connect(box_, &QMessageBox::finished, box_, [this, refuse, allow] {
        const QAbstractButton* clicked = box_->clickedButton();
        finish(clicked == allow    ? std::optional(true)
               : clicked == refuse ? std::optional(false)
                                   : std::nullopt);
    });
    // A window that closes takes the dialog with it.
    QObject::connect(box_, &QObject::destroyed, [this] { finish(std::nullopt); });
    box_->open();
}

void ContactsDialog::finish(std::optional<bool> allowed) {
    for (const auto& answer : std::exchange(waiting_, {}))
        answer(allowed);
}

}  // namespace vell
