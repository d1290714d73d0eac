#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsDialog: asks the user once whether the address book may be read, and names what that
// covers. Only "Allow" and "Don't Allow" are answers: after "Not Now", or when it is closed or its
// window closes, the question comes again.

#include <QCoreApplication>
#include <QMessageBox>
#include <QPointer>
#include <optional>
#include <vector>

#include "identity/contacts/system_contacts.h"

namespace vell {

class ContactsDialog final : public ContactsPrompt {
    Q_DECLARE_TR_FUNCTIONS(ContactsDialog)

  public:
    ~ContactsDialog() override;
    /// Opens the dialog, or joins the one that is open.
    void ask(Answered answer) override;

  private:
    void finish(std::optional<bool> allowed);

    QPointer<QMessageBox> box_;
    std::vector<Answered> waiting_;
};

}  // namespace vell
