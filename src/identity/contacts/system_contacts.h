#pragma once
// SPDX-License-Identifier: MIT
//
// SystemContacts: all address books of this machine as one. What the user has pointed to is always
// read; the rest only when the user, who is asked once, allows it.

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "identity/contacts/contacts_source.h"
#include "toolkit/console.h"

class QSettings;

namespace vell {

/// Asks the user for consent.
class ContactsPrompt {
  public:
    virtual ~ContactsPrompt() = default;
    /// Nothing when the question was dismissed without an answer.
    using Answered = std::function<void(std::optional<bool> allowed)>;
    /// Asks whether folders and services with contacts may be read. The answer comes once, on the
    /// window thread, now or later.
    virtual void ask(Answered answer) = 0;
};

class SystemContacts final : public ContactsSource {
    Q_OBJECT

  public:
    using Sources = std::vector<std::unique_ptr<ContactsSource>>;

    /// The sources are read in this order, the user's own ones first. Settings and prompt must
    /// outlive this.
    SystemContacts(QSettings& settings, ContactsPrompt& prompt, Sources chosen, Sources guarded,
                   std::shared_ptr<Logger> log = console::defaultConsole());
    ~SystemContacts() override;

    /// What the user has answered; nothing before the first answer.
    [[nodiscard]] std::optional<bool> access() const;
    /// Stores another answer, which takes effect with the next request for access.
    void setAccess(bool allowed);

    /// If the user dismisses the question, the callback is never called and the next request asks
    /// again.
    void requestAccess(Answer answer) override;
    [[nodiscard]] Enumeration enumeration() override;
    [[nodiscard]] bool hasFreeContacts() const override;

  private:
    void answerRequests(bool allowed);
    void openSources(std::vector<Answer> requests);

    QSettings& settings_;
    ContactsPrompt& prompt_;
    const Sources chosen_;
    const Sources guarded_;
    const std::shared_ptr<Logger> log_;
    std::vector<Answer> waiting_;  ///< for the user
    const std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

}  // namespace vell
