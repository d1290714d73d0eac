// SPDX-License-Identifier: MIT
#include "identity/contacts/contacts_store.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <functional>
#include <thread>

#include "identity/contacts/sender_name.h"
#include "identity/log_lines.h"
#include "identity/memory_contacts.h"
#include "identity/waiting.h"
#include "transcript/user_id.h"

namespace {

using namespace vell;
using namespace Qt::StringLiterals;
using foundation::Error;

ContactRecord contact(const QString& id, const std::optional<QString>& name) {
    ContactRecord record;
    record.identifier = id;
    record.name = name;
    return record;
}

ContactRecord withPhone(const QString& id, const QString& number) {
    ContactRecord record = contact(id, id.toUpper());
    record.phoneNumbers.push_back({number});
    return record;
}

ContactRecord withEmail(const QString& id, const QString& address) {
    ContactRecord record = contact(id, id.toUpper());
    record.emailAddresses.push_back(address);
    return record;
}

class ContactsStoreTest : public testing::Test {
  protected:
    void makeStore() {
        auto owned = std::make_unique<test::MemoryContacts>();
        source = owned.get();
        source->contacts = contacts;
        source->isFree = isFree;
        store = std::make_unique<ContactsStore>(std::move(owned), settings, log);
    }
    /// A store whose access was granted and whose contacts are there.
    void load() {
        settings.setValue("VellDidRequestABAccess", true);
        makeStore();
        source->answer(true);
        reload(nullptr);
    }
    void reload(const std::function<void()>& start) {
        QSignalSpy published(store.get(), &ContactsStore::addressToContactChanged);
        if (start) start();
        ASSERT_TRUE(test::waitFor([&] { return !published.isEmpty(); }));
    }
    QString idAt(const QString& address) const {
        return store->addressToContact().value(address).id;
    }

    QTemporaryDir folder;
    QSettings settings{folder.filePath("settings.ini"), QSettings::IniFormat};
    std::shared_ptr<test::LogLines> log = std::make_shared<test::LogLines>();
    std::vector<ContactRecord> contacts;
    bool isFree = false;
    test::MemoryContacts* source = nullptr;
    std::unique_ptr<ContactsStore> store;
};

TEST_F(ContactsStoreTest, AsksOnlyOnRequestAndNeverTwice) {
    contacts = {withEmail("a", "a@x.org")};
    makeStore();
    EXPECT_TRUE(source->requests.empty()) << "no prompt at creation";
    EXPECT_TRUE(store->shouldRequestABAccess());
    Q_EMIT source->contactsChanged();
    EXPECT_EQ(source->enumerations, 0) << "a change without access";

    const QSignalSpy asked(store.get(), &ContactsStore::didRequestABAccessChanged);
    store->requestAccess();
    std::thread([&] { source->answer(false); }).join();
    EXPECT_TRUE(store->shouldRequestABAccess()) << "answers are taken on the window thread";
    ASSERT_TRUE(test::waitFor([&] { return asked.size() == 1; }));
    EXPECT_FALSE(store->shouldRequestABAccess());
    EXPECT_FALSE(store->contactsAvailable());
    Q_EMIT source->contactsChanged();
    EXPECT_EQ(source->enumerations, 0) << "a change while access is denied";
    EXPECT_EQ(log->take(), QStringList{"Contact authoriation result: false"});
    EXPECT_TRUE(settings.value("VellDidRequestABAccess").toBool());
}

TEST_F(ContactsStoreTest, RequestsAccessByItselfInLaterRuns) {
    contacts = {withEmail("a", "a@x.org")};
    load();
    EXPECT_TRUE(store->contactsAvailable());
    EXPECT_EQ(idAt("a@x.org"), "a");
    EXPECT_EQ(log->take(),
              (QStringList{"Contact authoriation result: true", "Loading contacts ..."}));
    EXPECT_EQ(&ContactsStore::shared(), store.get());
}

TEST_F(ContactsStoreTest, ReportsErrorsAndKeepsTheTable) {
    contacts = {withEmail("a", "a@x.org")};
    load();
    (void)log->take();
    const Error error("ServiceErrorDomain", 7, "no luck");
    source->failure = error;
    source->contacts = {withEmail("b", "b@x.org")};
    Q_EMIT source->contactsChanged();
    QStringList lines;
    ASSERT_TRUE(test::waitFor([&] { return (lines += log->take()).size() == 2; }));
    EXPECT_EQ(lines[1], "ERROR: Error while retrieving contact data: " + error.description());
    source->failure.reset();
    source->isOutOfMemory = true;
    Q_EMIT source->contactsChanged();
    ASSERT_TRUE(test::waitFor([&] { return (lines += log->take()).size() == 4; }));
    EXPECT_EQ(lines[3], "ERROR: Error while retrieving contact data: Out of memory");
    EXPECT_EQ(store->addressToContact().size(), 1);

    store->requestAccess();
    source->answer(false, error);
    ASSERT_TRUE(test::waitFor([&] { return !store->contactsAvailable(); }));
    EXPECT_EQ(log->take(),
              QStringList{"ERROR: Contact authoriation failed: false " + error.description()});
}

TEST_F(ContactsStoreTest, ReadsFilesOfTheUserWhateverTheAnswer) {
    contacts = {withEmail("a", "a@x.org")};
    isFree = true;
    makeStore();
    reload(nullptr);
    EXPECT_EQ(idAt("a@x.org"), "a");
    EXPECT_TRUE(store->shouldRequestABAccess()) << "that was the user's file, not the address book";
    reload([&] {
        store->requestAccess();
        source->answer(false);
    });
    EXPECT_FALSE(store->contactsAvailable());
    reload([&] { Q_EMIT source->contactsChanged(); });
}

TEST_F(ContactsStoreTest, FilesAContactUnderEachAddress) {
    ContactRecord bob = contact("1", "Bob Smith");
    bob.nickname = "Bobby";
    bob.instantMessageAddresses = {{" Bob S", "AIM"}, {"bob@x.org", "Jabber"}};
    bob.phoneNumbers = {{"+1 (555) 01-23"}, {"110"}};
    bob.emailAddresses = {"bob@x.org", "Bob@x.org"};
    ContactRecord nameless = contact("2", std::nullopt);
    nameless.emailAddresses = {"2@x.org"};
    contacts = {bob, nameless};
    load();

    QStringList keys = store->addressToContact().keys();
    keys.sort();
    EXPECT_EQ(keys, (QStringList{" Bob S", "+1 (555) 01-23", "+1(555)0123", "110", "Bob@x.org",
                                 "bob@x.org"}));
    const ContactsStore::Info cleaned = store->addressToContact().value("+1(555)0123");
    EXPECT_EQ(cleaned, (ContactsStore::Info{"1", "+1 (555) 01-23", "Bob Smith", "Bobby"}));
    EXPECT_EQ(store->addressToContact().value("Bob@x.org").address, "Bob@x.org");
    EXPECT_EQ(log->take().last(), "Contact has no name: 2");
}

// Two contacts want the same key: who gets it, and which line is written.
TEST_F(ContactsStoreTest, GivesEachKeyToOneContact) {
    ContactRecord chat1 = contact("a", "Ann"), chat2 = contact("b", "Ben");
    chat1.instantMessageAddresses = {{"x", "AIM"}, {"x", "ICQ"}};
    chat2.instantMessageAddresses = {{"x", "Jabber"}, {"y", "AIM"}};
    ContactRecord mailOfChat = withEmail("c", "x");
    const struct {
        const char* what;
        std::vector<ContactRecord> contacts;
        QHash<QString, QString> owners;
        QStringList log;
    } rows[] = {
        {"user name: the first keeps it, the other addresses are filed",
         {chat1, chat2},
         {{"x", "a"}, {"y", "b"}},
         {"Duplicate chat user name in contacts: x Jabber Ben Ann"}},
        {"e-mail address",
         {withEmail("a", "m@x"), withEmail("b", "m@x"), withEmail("b", "M@x")},
         {{"m@x", "a"}, {"M@x", "b"}},
         {"Duplicate email in contacts: m@x B A"}},
        {"e-mail address that is a user name",
         {chat1, mailOfChat},
         {{"x", "a"}},
         {"Duplicate email in contacts: x C Ann"}},
        {"phone number written alike: no key for the second",
         {withPhone("a", "1 2-3"), withPhone("b", "1 2-3")},
         {{"1 2-3", "a"}, {"123", "a"}},
         {"Duplicate phone number in contacts: 1 2-3 <PhoneNumber: 1 2-3> B A"}},
        {"phone number written differently: the second takes the cleaned form silently",
         {withPhone("a", "1 23"), withPhone("b", "12-3")},
         {{"1 23", "a"}, {"12-3", "b"}, {"123", "b"}},
         {}},
        {"phone number written clean is guarded, against a cleaned one too",
         {withPhone("a", "1 23"), withPhone("b", "123")},
         {{"1 23", "a"}, {"123", "a"}},
         {"Duplicate phone number in contacts: 123 <PhoneNumber: 123> B A"}},
        {"phone number written clean first: the cleaned form replaces it",
         {withPhone("a", "123"), withPhone("b", "1 23")},
         {{"123", "b"}, {"1 23", "b"}},
         {}},
        {"a number listed again takes nothing back",
         {withPhone("a", "1 23"), withPhone("b", "12-3"), withPhone("a", "1 23")},
         {{"1 23", "a"}, {"12-3", "b"}, {"123", "b"}},
         {}},
    };
    for (const auto& row : rows) {
        contacts = row.contacts;
        load();
        QHash<QString, QString> owners;
        const ContactsStore::Table& table = store->addressToContact();
        for (auto entry = table.cbegin(); entry != table.cend(); ++entry)
            owners.insert(entry.key(), entry->id);
        EXPECT_EQ(owners, row.owners) << row.what;
        EXPECT_EQ(log->take().mid(2), row.log) << row.what;
        store.reset();
    }
}

TEST_F(ContactsStoreTest, MergesEachReadInOneChange) {
    contacts = {withEmail("a", "a@x"), withEmail("b", "b@x")};
    load();
    source->contacts = {withEmail("b2", "b@x"), withEmail("c", "c@x")};
    QSignalSpy published(store.get(), &ContactsStore::addressToContactChanged);
    reload([&] { Q_EMIT source->contactsChanged(); });
    EXPECT_EQ(published.size(), 1);
    EXPECT_EQ(idAt("a@x"), "a") << "deleted there, kept here";
    EXPECT_EQ(idAt("b@x"), "b2");
    EXPECT_EQ(idAt("c@x"), "c");
}

TEST_F(ContactsStoreTest, TheLastMergeOfOverlappingReadsWins) {
    contacts = {withEmail("old", "kept@x"), withEmail("old", "both@x"), withEmail("old", "b@x")};
    load();
    const auto slow = source->gate;
    slow->set(false);
    source->contacts = {withEmail("slow", "both@x"), withEmail("slow", "a@x")};
    Q_EMIT source->contactsChanged();
    source->gate = std::make_shared<test::Gate>();
    source->contacts = {withEmail("fast", "both@x"), withEmail("fast", "b@x")};
    reload([&] { Q_EMIT source->contactsChanged(); });
    EXPECT_EQ(idAt("both@x"), "fast");
    reload([&] { slow->set(true); });
    EXPECT_EQ(idAt("both@x"), "slow");
    EXPECT_EQ(idAt("a@x"), "slow");
    EXPECT_EQ(idAt("b@x"), "fast") << "the slow one has not read it: its old value is no news";
    EXPECT_EQ(idAt("kept@x"), "old");
}

TEST_F(ContactsStoreTest, IsDestroyedWhileAReadHangs) {
    contacts = {withEmail("a", "a@x")};
    settings.setValue("VellDidRequestABAccess", true);
    makeStore();
    const auto gate = source->gate;
    gate->set(false);
    source->answer(true);
    ASSERT_TRUE(test::waitFor([&] { return source->enumerations == 1; }));
    store.reset();
    gate->set(true);
    QCoreApplication::processEvents();
}

TEST_F(ContactsStoreTest, ScalesPicturesToOneSize) {
    QImage wide(100, 50, QImage::Format_RGB32);
    wide.fill(Qt::red);
    for (int x = 50; x < 100; x++)
        for (int y = 0; y < 50; y++)
            wide.setPixelColor(x, y, Qt::blue);
    QByteArray png;
    QBuffer buffer(&png);
    ASSERT_TRUE(wide.save(&buffer, "PNG"));
    contacts = {withEmail("a", "a@x"), withEmail("b", "b@x"), withEmail("c", "c@x")};
    contacts[0].thumbnails = {"no picture", png, "the first one counts"};
    contacts[1].thumbnails = {"no picture"};
    load();
    const auto image = store->addressToContact().value("a@x").image;
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), QSize(76, 76));
    EXPECT_EQ(image->deviceIndependentSize(), QSizeF(38, 38));
    EXPECT_EQ(image->pixelColor(0, 75), QColor(Qt::red)) << "stretched, not fitted";
    EXPECT_EQ(image->pixelColor(35, 40), QColor(Qt::red)) << "sharp";
    EXPECT_EQ(image->pixelColor(40, 40), QColor(Qt::blue)) << "sharp";
    EXPECT_FALSE(store->addressToContact().value("b@x").image);
    EXPECT_FALSE(store->addressToContact().value("c@x").image);
}

TEST(SenderName, IsTheNicknameElseTheNameElseTheUserId) {
    const ContactsStore store(ContactsStore::Table{
        {"nick", {"1", "nick", "Name", "Nick"}},
        {"name", {"2", "name", "Name", std::nullopt}},
    });
    EXPECT_EQ(senderName({TesselServiceID::aim, "nick"}, store), "Nick");
    EXPECT_EQ(senderName({TesselServiceID::jabber, "name"}, store), "Name");
    EXPECT_EQ(senderName({TesselServiceID::aim, "Nick"}, store), "Nick") << "the id, as it is";
}

}  // namespace
