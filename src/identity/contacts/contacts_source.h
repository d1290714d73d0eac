#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsSource: an address book, as far as anybody needs one: permission, a walk over all
// contacts, and word of changes. A source lives on the window thread; its walks run anywhere.

#include <QObject>
#include <functional>
#include <optional>
#include <stop_token>

#include "foundation/error.h"
#include "identity/contacts/contact_record.h"

namespace vell {

/// What is wrong with an address book, in words.
class ContactsError final : public foundation::Error {
  public:
    explicit ContactsError(const QString& text)
        : Error(QStringLiteral("dev.quillmark.contacts"), 1, text) {}
};

using ContactHandler = std::function<void(const ContactRecord& contact)>;

class ContactsSource : public QObject {
    Q_OBJECT

  public:
    using Answer = std::function<void(bool granted, const std::optional<foundation::Error>& error)>;
    /// Hands out every contact, in the same order each time. It owns all it needs: it may run on
    /// any thread, beside others and after its source is gone. It ends early, whichever way, once a
    /// stop is requested, and throws foundation::Error when the contacts can't be read.
    using Enumeration =
        std::function<void(const ContactHandler& handle, const std::stop_token& stop)>;

    /// Asks for access. The answer comes once, at any time and on any thread; a source that is
    /// merely absent grants it.
    virtual void requestAccess(Answer answer) = 0;
    /// Prepares a walk over what may be read now.
    [[nodiscard]] virtual Enumeration enumeration() = 0;
    /// Whether there are contacts that the user has pointed to, so that nobody need be asked.
    [[nodiscard]] virtual bool hasFreeContacts() const { return false; }

  Q_SIGNALS:
    /// May come from any thread.
    void contactsChanged();
};

}  // namespace vell
