// SPDX-License-Identifier: MIT
#include "identity/contacts/contacts_store.h"

#include <QSettings>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <vector>

#include "foundation/checked.h"
#include "foundation/guarded.h"
#include "identity/contacts/contact_table.h"
#include "identity/contacts/contacts_source.h"
#include "toolkit/callback_guard.h"

namespace vell {
namespace {

const QString didRequestKey = QStringLiteral("VellDidRequestABAccess");
/// How long the program waits for reads when it exits: another program's service may hang.
constexpr std::chrono::milliseconds exitTimeout{300};

ContactsStore* sharedStore = nullptr;

}  // namespace

/// What the store and its reading threads share. The threads are detached and may outlive the
/// store.
struct ContactsStore::Background {
    explicit Background(ContactsStore* store) : callbacks(store) {}

    CallbackGuard callbacks;
    std::stop_source stop;
    ContactPictureCache pictures;

    /// Held by a reading thread for as long as it runs.
    class Running {
      public:
        explicit Running(std::shared_ptr<Background> background)
            : background_(std::move(background)) {
            const std::lock_guard lock(background_->mutex_);
            background_->running_++;
        }
        Running(Running&& other) noexcept = default;
        Running& operator=(Running&&) = delete;
        ~Running() {
            if (!background_) return;
            const std::lock_guard lock(background_->mutex_);
            background_->running_--;
            background_->ended_.notify_all();
        }
        Background* operator->() const { return background_.get(); }

      private:
        std::shared_ptr<Background> background_;
    };

    void waitBriefly() {
        std::unique_lock lock(mutex_);
        ended_.wait_for(lock, exitTimeout, [this] { return running_ == 0; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable ended_;
    int running_ = 0;
};

/// A complete result for the window thread, already merged with the table as it was when the read
/// began; it has rarely changed since.
struct ContactsStore::Reading {
    Table merged;
    std::vector<QString> kept;  ///< the keys of `merged` that only the old table had
    quint64 oldVersion = 0;

    void merge(const Table& old) {
        for (auto entry = old.cbegin(); entry != old.cend(); ++entry) {
            if (merged.contains(entry.key())) continue;
            kept.push_back(entry.key());
        }
        for (const QString& key : kept)
            merged.insert(key, *old.constFind(key));
    }
};

ContactsStore::ContactsStore(Table addressToContact)
    : log_(console::defaultConsole()), addressToContact_(std::move(addressToContact)) {}

ContactsStore::ContactsStore(std::unique_ptr<ContactsSource> source, QSettings& settings,
                             std::shared_ptr<Logger> log)
    : log_(std::move(log)),
      source_(std::move(source)),
      settings_(&settings),
      didRequestABAccess_(settings.value(didRequestKey).toBool()),
      background_(std::make_shared<Background>(this)) {
    if (!sharedStore) sharedStore = this;
    if (didRequestABAccess_) {
        requestAccess();
    } else if (source_->hasFreeContacts()) {
        retrieveContacts();
    }
    connect(source_.get(), &ContactsSource::contactsChanged, this,
            &ContactsStore::retrieveChangedContacts);
}

ContactsStore::~ContactsStore() {
    if (sharedStore == this) sharedStore = nullptr;
    if (!background_) return;
    background_->callbacks.close();
    background_->stop.request_stop();
    background_->waitBriefly();
}

ContactsStore& ContactsStore::shared() {
    if (!sharedStore) foundation::fatal("there is no contacts store");
    return *sharedStore;
}

void ContactsStore::requestAccess() {
    if (!source_) return;
    source_->requestAccess([this, background = background_](
                               bool granted, const std::optional<foundation::Error>& error) {
        // Runs only while `this` exists.
        background->callbacks.post([this, granted, error] { completeRequest(granted, error); });
    });
}

void ContactsStore::completeRequest(bool granted, const std::optional<foundation::Error>& error) {
    if (error) {
        log_->error("Contact authoriation failed:", granted, *error);
    } else {
        log_->log("Contact authoriation result:", granted);
    }
    if (std::exchange(contactsAvailable_, granted) != granted) Q_EMIT contactsAvailableChanged();
    settings_->setValue(didRequestKey, true);
    if (!std::exchange(didRequestABAccess_, true)) Q_EMIT didRequestABAccessChanged();
    if (granted || source_->hasFreeContacts()) retrieveContacts();
}

void ContactsStore::retrieveChangedContacts() {
    if ((didRequestABAccess_ && contactsAvailable_) || source_->hasFreeContacts())
        retrieveContacts();
}

void ContactsStore::retrieveContacts() {
    log_->log("Loading contacts ...");
    auto read = [this, log = log_, enumerate = source_->enumeration(), old = addressToContact_,
                 oldVersion = tableVersion_, running = Background::Running(background_)]() mutable {
        const auto reading = std::make_shared<Reading>();
        const std::stop_token stop = running->stop.get_token();
        try {
            running->pictures.age();
            ContactTable table(*log, &running->pictures);
            enumerate([&](const ContactRecord& contact) { table.file(contact); }, stop);
            reading->merged = table.take();
        } catch (const foundation::Error& error) {
            log->error("Error while retrieving contact data:", error);
            return;
        }
        if (stop.stop_requested()) return;
        reading->oldVersion = oldVersion;
        reading->merge(std::exchange(old, {}));
        // Runs only while `this` exists.
        running->callbacks.post([this, reading] { publish(*reading); });
    };
    foundation::runDetached(std::move(read), [log = log_] {
        log->error("Error while retrieving contact data:", "Out of memory");
    });
}

void ContactsStore::publish(Reading& reading) {
    if (tableVersion_ == reading.oldVersion) {
        addressToContact_.swap(reading.merged);
        // Freeing thousands of small blocks takes time that this thread doesn't have.
        foundation::runDetached([old = std::move(reading.merged)] {}, [] {});
    } else {
        // Another read was published meanwhile: only what this one found itself replaces that
        // result.
        for (const QString& key : reading.kept)
            reading.merged.remove(key);
        for (auto entry = reading.merged.cbegin(); entry != reading.merged.cend(); ++entry)
            addressToContact_.insert(entry.key(), *entry);
    }
    tableVersion_++;
    Q_EMIT addressToContactChanged();
}

}  // namespace vell
