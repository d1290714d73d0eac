// SPDX-License-Identifier: MIT
#include "identity/contacts/system_contacts.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

#include "identity/contacts/contacts_store.h"
#include "identity/log_lines.h"
#include "identity/memory_contacts.h"
#include "identity/waiting.h"

namespace {

using namespace vell;
using foundation::Error;

class Prompt final : public ContactsPrompt {
  public:
    void ask(Answered answer) override { questions.push_back(std::move(answer)); }
    std::vector<Answered> questions;
};

ContactRecord person(const QString& id) {
    ContactRecord record;
    record.identifier = id;
    record.name = id.toUpper();
    record.emailAddresses = {"shared@x", id + "@x"};
    return record;
}

class SystemContactsTest : public testing::Test {
  protected:
    /// Chosen files with "file"; guarded "folder" and "service".
    void makeContacts(bool withFile) {
        const auto make = [](const QString& id) {
            auto source = std::make_unique<test::MemoryContacts>();
            source->contacts = {person(id)};
            return source;
        };
        auto chosenOne = make("file"), folderOne = make("folder"), serviceOne = make("service");
        chosenOne->isFree = withFile;
        if (!withFile) chosenOne->contacts.clear();
        folder = folderOne.get();
        service = serviceOne.get();
        SystemContacts::Sources chosen, guarded;
        chosen.push_back(std::move(chosenOne));
        guarded.push_back(std::move(folderOne));
        guarded.push_back(std::move(serviceOne));
        auto all = std::make_unique<SystemContacts>(settings, prompt, std::move(chosen),
                                                    std::move(guarded), log);
        contacts = all.get();
        store = std::make_unique<ContactsStore>(std::move(all), settings, log);
    }
    void answerSources(const std::optional<Error>& error = std::nullopt) {
        ASSERT_TRUE(test::waitFor([&] { return service->requests.size() == 1; }));
        folder->answer(true);
        EXPECT_FALSE(store->contactsAvailable()) << "not all have answered";
        service->answer(true, error);
    }
    bool waitForPeople(const QStringList& ids) {
        return test::waitFor([&] {
            QStringList found;
            for (const char* id : {"file", "folder", "service"})
                if (store->addressToContact().contains(id + QStringLiteral("@x"))) found += id;
            return found == ids;
        });
    }

    QTemporaryDir elsewhere;
    QSettings settings{elsewhere.filePath("settings.ini"), QSettings::IniFormat};
    Prompt prompt;
    std::shared_ptr<test::LogLines> log = std::make_shared<test::LogLines>();
    test::MemoryContacts* folder = nullptr;
    test::MemoryContacts* service = nullptr;
    SystemContacts* contacts = nullptr;
    std::unique_ptr<ContactsStore> store;
};

TEST_F(SystemContactsTest, AsksTheUserOnceAndKeepsTheAnswer) {
    makeContacts(true);
    EXPECT_TRUE(waitForPeople({"file"}));
    EXPECT_TRUE(prompt.questions.empty()) << "choosing a file was consent";

    store->requestAccess();
    store->requestAccess();
    ASSERT_EQ(prompt.questions.size(), 1u) << "asked twice before the answer";
    prompt.questions[0](true);
    answerSources();
    EXPECT_TRUE(waitForPeople({"file", "folder", "service"}));
    EXPECT_EQ(store->addressToContact().value("shared@x").id, "file") << "in their order";

    makeContacts(true);
    answerSources();
    EXPECT_TRUE(waitForPeople({"file", "folder", "service"}));
    EXPECT_EQ(prompt.questions.size(), 1u) << "a later visit";
}

TEST_F(SystemContactsTest, ADismissedQuestionIsAskedAgain) {
    makeContacts(false);
    store->requestAccess();
    prompt.questions.at(0)(std::nullopt);
    QCoreApplication::processEvents();
    EXPECT_TRUE(store->shouldRequestABAccess());
    EXPECT_FALSE(contacts->access());
    store->requestAccess();
    ASSERT_EQ(prompt.questions.size(), 2u);
    prompt.questions[1](true);
    answerSources();
    EXPECT_TRUE(waitForPeople({"folder", "service"}));
}

TEST_F(SystemContactsTest, RefusalLeavesTheUsersOwnFiles) {
    makeContacts(true);
    store->requestAccess();
    prompt.questions.at(0)(false);
    ASSERT_TRUE(test::waitFor([&] { return store->didRequestABAccess(); }));
    EXPECT_FALSE(store->contactsAvailable());
    EXPECT_TRUE(waitForPeople({"file"}));
    EXPECT_TRUE(folder->requests.empty());
    EXPECT_EQ(folder->enumerations + service->enumerations, 0);

    contacts->setAccess(true);  // a change of mind
    store->requestAccess();
    answerSources();
    EXPECT_TRUE(waitForPeople({"file", "folder", "service"}));
    EXPECT_EQ(prompt.questions.size(), 1u);
}

TEST_F(SystemContactsTest, OneFailureHidesNoOtherSource) {
    const Error error("ServiceErrorDomain", 1, "gone");
    settings.setValue("ContactsAccess", true);
    settings.setValue("VellDidRequestABAccess", true);
    makeContacts(false);
    service->failure = error;
    answerSources(error);
    EXPECT_TRUE(waitForPeople({"folder", "service"})) << "what came before the failure counts too";
    EXPECT_EQ(log->take().filter(QStringLiteral("ERROR: ")),
              (QStringList{"ERROR: Contact authoriation failed: true " + error.description(),
                           "ERROR: Error while retrieving contact data: " + error.description()}));
}

TEST_F(SystemContactsTest, AnAnswerAfterDestructionIsIgnored) {
    makeContacts(false);
    store->requestAccess();
    store.reset();
    prompt.questions.at(0)(true);
    EXPECT_FALSE(settings.contains("ContactsAccess"));
}

}  // namespace
