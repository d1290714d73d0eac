#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsDialog: asks the user once whether the address book may be read, naming what would be.

#include <QCoreApplication>
#include <QMessageBox>
#include <QPointer>
#include <functional>
#include <vector>

#include "identity/system_contacts.h"

namespace vell {

class ContactsDialog final : public ContactsPrompt {
    Q_DECLARE_TR_FUNCTIONS(ContactsDialog)

  public:
    ~ContactsDialog() override;
    /// Opens the dialog, or joins the one that is open.
    void ask(std::function<void(bool allowed)> answer) override;

  private:
    void finish(bool allowed);

    QPointer<QMessageBox> box_;
    std::vector<std::function<void(bool)>> waiting_;
};

}  // namespace vell
