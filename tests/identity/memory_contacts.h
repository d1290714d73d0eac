#pragma once
// SPDX-License-Identifier: MIT
//
// An address book in memory, whose answers and enumerations a test controls.

#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "identity/contacts/contacts_source.h"

namespace vell::test {

/// Blocks while it is closed.
class Gate {
  public:
    void set(bool open) {
        const std::lock_guard lock(mutex_);
        open_ = open;
        changed_.notify_all();
    }
    void pass() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return open_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = true;
};

class MemoryContacts final : public ContactsSource {
  public:
    std::vector<ContactRecord> contacts;
    std::vector<Answer> requests;  ///< not yet answered
    std::optional<foundation::Error> failure;
    bool isOutOfMemory = false;
    bool isFree = false;
    int enumerations = 0;
    /// The next enumeration waits here at its end.
    std::shared_ptr<Gate> gate = std::make_shared<Gate>();

    void requestAccess(Answer answer) override { requests.push_back(std::move(answer)); }
    Enumeration enumeration() override {
        enumerations++;
        return [contacts = contacts, failure = failure, isOutOfMemory = isOutOfMemory, gate = gate](
                   const ContactHandler& handle, const std::stop_token&) {
            for (const ContactRecord& contact : contacts)
                handle(contact);
            gate->pass();
            if (failure) throw *failure;
            if (isOutOfMemory) throw std::bad_alloc();
        };
    }
    bool hasFreeContacts() const override { return isFree; }

    void answer(bool granted, const std::optional<foundation::Error>& error = std::nullopt) {
        for (const Answer& request : std::exchange(requests, {}))
            request(granted, error);
    }
};

}  // namespace vell::test
