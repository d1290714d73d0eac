#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsBar: the row below a timeline that offers names and pictures from the address book until
// the user has decided.

#include <QWidget>

namespace vell {

class ContactsStore;

class ContactsBar final : public QWidget {
    Q_OBJECT

  public:
    /// Shows and hides itself as the store's state changes.
    explicit ContactsBar(ContactsStore& contacts, QWidget* parent = nullptr);

  private:
    ContactsStore& contacts_;
};

}  // namespace vell
