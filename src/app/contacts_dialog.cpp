// SPDX-License-Identifier: MIT
#include "app/contacts_dialog.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <utility>

#include "identity/vcard_source.h"

namespace vell {

ContactsDialog::~ContactsDialog() {
    delete box_;
}

void ContactsDialog::ask(std::function<void(bool)> answer) {
    waiting_.push_back(std::move(answer));
    if (box_) return;
    QStringList places;
    for (const QString& folder : VCardSource::customaryFolders())
        places.append(QStringLiteral("• ") + QDir::toNativeSeparators(folder));
    places.append(tr("• the desktop’s address books (Evolution)"));

    box_ = new QMessageBox(QMessageBox::Question, QApplication::applicationDisplayName(),
                           tr("Vell would like to read your contacts, to show names and pictures "
                              "instead of chat addresses."),
                           QMessageBox::NoButton, QApplication::activeWindow());
    box_->setObjectName(QStringLiteral("contactsPrompt"));
    box_->setAttribute(Qt::WA_DeleteOnClose);
    box_->setInformativeText(
        tr("It would read:\n%1\n\nNothing is written to them or sent anywhere. You "
           "can change your answer in the preferences.")
            .arg(places.join(u'\n')));
    box_->addButton(tr("Don’t Allow"), QMessageBox::RejectRole);
    const QPushButton* allow = box_->addButton(tr("Allow"), QMessageBox::AcceptRole);
    QObject::connect(box_, &QMessageBox::finished, box_,
                     [this, allow] { finish(box_->clickedButton() == allow); });
    box_->open();
}

void ContactsDialog::finish(bool allowed) {
    for (const auto& answer : std::exchange(waiting_, {}))
        answer(allowed);
}

}  // namespace vell
