// SPDX-License-Identifier: MIT
#include "identity/contacts/system_contacts.h"

#include <QSettings>
#include <mutex>
#include <utility>

#include "toolkit/logger.h"

namespace vell {
namespace {

const QString accessKey = QStringLiteral("ContactsAccess");

/// Collects the answers of several sources, which arrive on any thread.
struct Answers {
    std::mutex mutex;
    size_t missing = 0;
    std::optional<foundation::Error> error;
};

}  // namespace

SystemContacts::SystemContacts(QSettings& settings, ContactsPrompt& prompt, Sources chosen,
                               Sources guarded, std::shared_ptr<Logger> log)
    : settings_(settings),
      prompt_(prompt),
      chosen_(std::move(chosen)),
      guarded_(std::move(guarded)),
      log_(std::move(log)) {
    for (const Sources* sources : {&chosen_, &guarded_})
        for (const auto& source : *sources)
            connect(source.get(), &ContactsSource::contactsChanged, this,
                    &SystemContacts::contactsChanged);
}

SystemContacts::~SystemContacts() {
    *isAlive_ = false;
}

std::optional<bool> SystemContacts::access() const {
    const QVariant answer = settings_.value(accessKey);
    if (!answer.isValid()) return std::nullopt;
    return answer.toBool();
}

void SystemContacts::setAccess(bool allowed) {
    settings_.setValue(accessKey, allowed);
}

void SystemContacts::requestAccess(Answer answer) {
    waiting_.push_back(std::move(answer));
    if (const std::optional<bool> known = access()) {
        answerRequests(*known);
    } else if (waiting_.size() == 1) {
        prompt_.ask([this, isAlive = isAlive_](std::optional<bool> allowed) {
            if (!*isAlive) return;
            if (!allowed) {
                waiting_.clear();
                return;
            }
            setAccess(*allowed);
            answerRequests(*allowed);
        });
    }
}

void SystemContacts::answerRequests(bool allowed) {
    std::vector<Answer> requests = std::exchange(waiting_, {});
    if (allowed) {
        openSources(std::move(requests));
    } else {
        for (const Answer& request : requests)
            request(false, std::nullopt);
    }
}

void SystemContacts::openSources(std::vector<Answer> requests) {
    const auto answers = std::make_shared<Answers>();
    answers->missing = guarded_.size() + 1;  // one of our own: there may be no source
    const auto answer = [answers, requests = std::move(requests)](
                            bool, const std::optional<foundation::Error>& error) {
        {
            const std::lock_guard lock(answers->mutex);
            if (!answers->error) answers->error = error;
            if (--answers->missing > 0) return;
        }
        for (const Answer& request : requests)
            request(true, answers->error);
    };
    for (const auto& source : guarded_)
        source->requestAccess(answer);
    answer(true, std::nullopt);
}

ContactsSource::Enumeration SystemContacts::enumeration() {
    std::vector<Enumeration> walks;
    for (const auto& source : chosen_)
        walks.push_back(source->enumeration());
    if (access().value_or(false))
        for (const auto& source : guarded_)
            walks.push_back(source->enumeration());
    return [walks = std::move(walks), log = log_](const ContactHandler& handle,
                                                  const std::stop_token& stop) {
        // One address book that fails must not hide the people of the others.
        std::optional<foundation::Error> failure;
        size_t failures = 0;
        for (const Enumeration& walk : walks) {
            try {
                walk(handle, stop);
            } catch (const foundation::Error& error) {
                if (failure) log->error("Error while retrieving contact data:", *failure);
                failure = error;
                failures++;
            }
        }
        if (failure && failures == walks.size()) throw *failure;
        if (failure) log->error("Error while retrieving contact data:", *failure);
    };
}

bool SystemContacts::hasFreeContacts() const {
    for (const auto& source : chosen_)
        if (source->hasFreeContacts()) return true;
    return false;
}

}  // namespace vell
