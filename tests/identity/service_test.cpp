// SPDX-License-Identifier: MIT
//
// Against a real address-book service, in the session that with_address_book.sh makes.
#include "identity/service/service_source.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QImage>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <csignal>
#include <cstdlib>
#include <future>

#include "identity/contacts/contacts_store.h"
#include "identity/log_lines.h"
#include "identity/waiting.h"

namespace {

using namespace vell;

constexpr int manyContacts = 1000;
const QString factory = QStringLiteral("org.gnome.evolution.dataserver.AddressBook10");

void writeToBook(const QStringList& arguments) {
    QProcess writer;
    writer.setProcessChannelMode(QProcess::ForwardedChannels);
    writer.start(QStringLiteral(ADDRESS_BOOK_WRITER), arguments);
    ASSERT_TRUE(writer.waitForFinished(60000));
    ASSERT_EQ(writer.exitCode(), 0) << arguments.join(u' ').toStdString();
}

class ServiceTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        const QTemporaryDir folder;
        QImage photo(96, 96, QImage::Format_RGB32);
        photo.fill(Qt::red);
        ASSERT_TRUE(photo.save(folder.filePath("photo.jpg"), "JPEG"));
        writeToBook({"fill", QString::number(manyContacts), folder.filePath("photo.jpg")});
    }
    void SetUp() override {
        settings.setValue("VellDidRequestABAccess", true);
        store = std::make_unique<ContactsStore>(
            std::make_unique<ServiceSource>(QStringList{PLUGIN_FOLDER}, log), settings, log);
        ASSERT_TRUE(test::waitFor([&] { return !store->addressToContact().isEmpty(); }));
    }
    testing::AssertionResult becomesCalled(const QString& address, const QString& name) {
        const auto called = [&] { return store->addressToContact().value(address).name == name; };
        if (test::waitFor(called)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << name.toStdString() << " never arrives";
    }

    QTemporaryDir elsewhere;
    QSettings settings{elsewhere.filePath("settings.ini"), QSettings::IniFormat};
    std::shared_ptr<test::LogLines> log = std::make_shared<test::LogLines>();
    std::unique_ptr<ContactsStore> store;
};

TEST_F(ServiceTest, LoadsAThousandContactsWithPhotos) {
    const ContactsStore::Table& table = store->addressToContact();
    for (int i = 0; i < manyContacts; i++) {
        const QString number = QString::number(i);
        const ContactsStore::Info info = table.value("c" + number + "@example.org");
        ASSERT_EQ(info.name, "Person " + number);
        EXPECT_EQ(table.value("aim" + number).id, info.id);
        EXPECT_EQ(table.value("+49 170 " + number + "-0").id, info.id) << "as written";
        EXPECT_EQ(table.value("+49170" + number + "0").id, info.id) << "cleaned";
        ASSERT_TRUE(info.image) << i;
        EXPECT_EQ(info.image->size(), QSize(76, 76));
    }
    EXPECT_GT(table.value("c1@example.org").image->pixelColor(38, 38).red(), 240);
    EXPECT_EQ(log->take(),
              (QStringList{"Contact authoriation result: true", "Loading contacts ..."}));
}

TEST_F(ServiceTest, SeesWhatAnotherProgramChanges) {
    writeToBook({"add", "new", "New Person", "new@example.org"});
    EXPECT_TRUE(becomesCalled("new@example.org", "New Person"));
    writeToBook({"edit", "new", "Old Friend", "new@example.org"});
    EXPECT_TRUE(becomesCalled("new@example.org", "Old Friend"));

    QSignalSpy published(store.get(), &ContactsStore::addressToContactChanged);
    writeToBook({"remove", "new"});
    ASSERT_TRUE(test::waitFor([&] { return !published.isEmpty(); }));
    EXPECT_EQ(store->addressToContact().value("new@example.org").name, "Old Friend")
        << "kept until the program ends";
    const std::unique_ptr<ContactsStore> later = std::exchange(store, nullptr);
    SetUp();
    EXPECT_FALSE(store->addressToContact().contains("new@example.org")) << "but not in the book";
}

TEST_F(ServiceTest, SurvivesTheServicesDeath) {
    for (const char* name : {"first", "second"}) {
        const QDBusReply<uint> pid = QDBusConnection::sessionBus().interface()->servicePid(factory);
        ASSERT_TRUE(pid.isValid());
        ASSERT_EQ(kill(static_cast<pid_t>(pid.value()), SIGKILL), 0);
        ASSERT_TRUE(test::waitFor([] {
            return !QDBusConnection::sessionBus().interface()->isServiceRegistered(factory);
        }));
        const QString address = QString(name) + "@example.org";
        writeToBook({"add", name, name, address});
        EXPECT_TRUE(becomesCalled(address, name));
    }
}

TEST(ServiceAbsent, HasNoContactsAndNoErrors) {
    const auto log = std::make_shared<test::LogLines>();
    QTemporaryDir folder;
    for (const QString& plugins : {folder.path(), QStringLiteral(PLUGIN_FOLDER)}) {
        ServiceSource source({plugins}, log);
        std::optional<bool> answer;
        std::mutex mutex;
        source.requestAccess([&](bool granted, const std::optional<foundation::Error>& error) {
            const std::lock_guard lock(mutex);
            EXPECT_FALSE(error);
            answer = granted;
        });
        ASSERT_TRUE(test::waitFor([&] {
            const std::lock_guard lock(mutex);
            return answer.has_value();
        }));
        EXPECT_TRUE(*answer);
        source.enumeration()([](const ContactRecord&) { FAIL(); }, {});
    }
    EXPECT_EQ(log->take(), QStringList());
}

TEST(ServiceAbsent, RefusesAPlugInOfAnotherVersion) {
    ServiceSource source({QStringLiteral(NEWER_PLUGIN_FOLDER)}, std::make_shared<test::LogLines>());
    std::promise<std::optional<foundation::Error>> answered;
    source.requestAccess(
        [&](bool, const std::optional<foundation::Error>& error) { answered.set_value(error); });
    const std::optional<foundation::Error> error = answered.get_future().get();
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->debugDescription().endsWith("is of version 2, not 1."))
        << error->debugDescription().toStdString();
}

}  // namespace
