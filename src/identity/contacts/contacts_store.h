#pragma once
// SPDX-License-Identifier: MIT
//
// ContactsStore: which person in the address book is behind a chat address. Lives on the window
// thread; reads its source in the background and publishes the result at once. Lookups are exact
// and cheap enough for every row that is painted. Nothing is ever written to an address book.

#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <utility>

#include "foundation/error.h"
#include "toolkit/console.h"

class QSettings;

namespace vell {

class ContactsSource;

class ContactsStore final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool contactsAvailable READ contactsAvailable NOTIFY contactsAvailableChanged)
    Q_PROPERTY(vell::ContactsStore::Table addressToContact READ addressToContact NOTIFY
                   addressToContactChanged)
    Q_PROPERTY(bool didRequestABAccess READ didRequestABAccess NOTIFY didRequestABAccessChanged)

  public:
    /// One contact under one of its addresses.
    struct Info {
        QString id;       ///< the contact's identifier in its address book
        QString address;  ///< the address this record is filed under, as the address book holds it
        QString name;
        std::optional<QString> nick;  ///< never empty
        /// Of Style::userIconSize, at two pixels a point.
        std::optional<QImage> image = std::nullopt;

        friend bool operator==(const Info&, const Info&) = default;
        friend size_t qHash(const Info& v, size_t seed = 0) {
            return qHashMulti(seed, v.id, v.address, v.name, v.nick.value_or(QString()));
        }
    };
    using Table = QHash<QString, Info>;

    /// Without a source: these contacts only.
    explicit ContactsStore(Table addressToContact = {});
    /// Reads from a source: at once if access was requested in an earlier run or isn't needed.
    /// The settings must outlive the store.
    ContactsStore(std::unique_ptr<ContactsSource> source, QSettings& settings,
                  std::shared_ptr<Logger> log = console::defaultConsole());
    /// Waits briefly for a running read, then abandons it.
    ~ContactsStore() override;

    /// The program's: the first store that was made with a source, as long as it exists.
    [[nodiscard]] static ContactsStore& shared();

    /// Whether the address book granted access.
    [[nodiscard]] bool contactsAvailable() const { return contactsAvailable_; }
    [[nodiscard]] const Table& addressToContact() const { return addressToContact_; }
    /// Whether access was ever requested on this machine.
    [[nodiscard]] bool didRequestABAccess() const { return didRequestABAccess_; }
    /// Whether to offer the user to request access.
    [[nodiscard]] bool shouldRequestABAccess() const {
        return !contactsAvailable_ && !didRequestABAccess_;
    }
    /// Asks for access; the contacts are read once it is granted.
    void requestAccess();

  Q_SIGNALS:
    void contactsAvailableChanged();
    /// Once for each completed read, however many contacts it brought.
    void addressToContactChanged();
    void didRequestABAccessChanged();

  private:
    struct Background;
    struct Reading;

    void completeRequest(bool granted, const std::optional<foundation::Error>& error);
    void retrieveContacts();
    void retrieveChangedContacts();
    void publish(Reading& reading);

    std::shared_ptr<Logger> log_;
    std::unique_ptr<ContactsSource> source_;
    QSettings* settings_ = nullptr;
    bool contactsAvailable_ = false;
    Table addressToContact_;
    quint64 tableVersion_ = 0;
    bool didRequestABAccess_ = false;
    std::shared_ptr<Background> background_;
};

}  // namespace vell

Q_DECLARE_TYPEINFO(vell::ContactsStore::Info, Q_RELOCATABLE_TYPE);
