// SPDX-License-Identifier: MIT
#include "app/documents/contacts_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/windows/widgets.h"
#include "identity/contacts/contacts_store.h"

namespace vell {

ContactsBar::ContactsBar(ContactsStore& contacts, QWidget* parent)
    : QWidget(parent), contacts_(contacts) {
    setObjectName(QStringLiteral("contactsBar"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);

    auto* text = new QLabel(
        tr("This app can show participant names and icons if you grant it access to your "
           "addressbook."));
    text->setWordWrap(true);
    auto* button = new QPushButton(tr("Grant or Deny"));
    button->setObjectName(QStringLiteral("grantOrDeny"));

    auto* row = new QHBoxLayout;
    row->setContentsMargins(defaultPadding, defaultPadding, defaultPadding, defaultPadding);
    row->addWidget(text, 1);
    row->addSpacing(defaultPadding);
    row->addWidget(button);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(divider());
    layout->addLayout(row);

    const auto update = [this] { setVisible(contacts_.shouldRequestABAccess()); };
    connect(button, &QPushButton::clicked, this, [this] { contacts_.requestAccess(); });
    connect(&contacts_, &ContactsStore::contactsAvailableChanged, this, update);
    connect(&contacts_, &ContactsStore::didRequestABAccessChanged, this, update);
    setVisible(contacts_.shouldRequestABAccess());
}

}  // namespace vell
