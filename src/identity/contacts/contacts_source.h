#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsSource: an address book: permission, enumeration of all contacts, and a signal when
// they change. A source lives on the window thread; enumerations run on any thread.

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
    /// Passes every contact to `handle`, in the same order each time. It owns all it needs, so it
    /// may run on any thread, concurrently with others and after its source is destroyed. Once a
    /// stop is requested it ends early; it throws foundation::Error when the contacts can't be
    /// read.
    using Enumeration =
        std::function<void(const ContactHandler& handle, const std::stop_token& stop)>;

    /// Asks for access. The answer comes once, at any time and on any thread; a source that is
    /// merely absent grants it.
    virtual void requestAccess(Answer answer) = 0;
    /// An enumeration of what may be read now.
    [[nodiscard]] virtual Enumeration enumeration() = 0;
    /// Whether there are contacts that the user chose, which need no further consent.
    [[nodiscard]] virtual bool hasFreeContacts() const { return false; }

  Q_SIGNALS:
    /// May come from any thread.
    void contactsChanged();
};

}  // namespace vell
