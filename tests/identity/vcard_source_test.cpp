// SPDX-License-Identifier: MIT
//
// Real files on a real disk, as people and synchronisers leave them.
#include "identity/vcard/vcard_source.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "identity/log_lines.h"
#include "identity/vcard/contact_files.h"
#include "identity/waiting.h"

namespace {

using namespace vell;

QByteArray cardOf(const QByteArray& id, const QByteArray& lines) {
    return "BEGIN:VCARD\nVERSION:3.0\nUID:" + id + "\nFN:" + id.toUpper() + "\n" + lines +
           "END:VCARD\n";
}

class VCardSourceTest : public testing::Test {
  protected:
    QString path(const QString& name) const { return folder.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    void replace(const QString& name, const QByteArray& bytes) const {
        write(name + ".new", bytes);
        ASSERT_EQ(std::rename(path(name + ".new").toLocal8Bit().constData(),
                              path(name).toLocal8Bit().constData()),
                  0);
    }
    /// A store that has read the paths.
    void load(const QStringList& paths) {
        settings.setValue("VellDidRequestABAccess", true);
        auto owned = std::make_unique<VCardSource>(paths, VCardSource::Chosen::byCustom, log);
        source = owned.get();
        store = std::make_unique<ContactsStore>(std::move(owned), settings, log);
        published =
            std::make_unique<QSignalSpy>(store.get(), &ContactsStore::addressToContactChanged);
        ASSERT_TRUE(test::waitFor([&] { return published->size() == 1; }));
        (void)log->take();
    }
    testing::AssertionResult comesToKnow(const QString& address, const QString& id) {
        if (test::waitFor([&] { return idAt(address) == id; })) return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << address.toStdString() << " is " << idAt(address).toStdString();
    }
    QString idAt(const QString& address) const {
        return store->addressToContact().value(address).id;
    }

    QTemporaryDir folder;
    QTemporaryDir elsewhere;
    QSettings settings{elsewhere.filePath("settings.ini"), QSettings::IniFormat};
    std::shared_ptr<test::LogLines> log = std::make_shared<test::LogLines>();
    VCardSource* source = nullptr;
    std::unique_ptr<ContactsStore> store;
    std::unique_ptr<QSignalSpy> published;
};

TEST_F(VCardSourceTest, FindsCardFilesInAStableOrder) {
    for (const char* name :
         {"b.vcf", "a/z.VCF", "a/y.vcard", "a/notes.txt", ".hidden/c.vcf", "c/d/e.vcf", ".d.vcf"})
        write(name, cardOf("x", ""));
    ASSERT_EQ(symlink("..", path("a/circle").toLocal8Bit().constData()), 0);
    ASSERT_EQ(mkfifo(path("pipe.vcf").toLocal8Bit().constData(), 0600), 0);
    write("chosen.txt", cardOf("x", ""));

    const ContactFiles found = findContactFiles({path("chosen.txt"), path("missing"), path("")});
    QStringList names;
    for (const QString& file : found.files)
        names.append(folder.path().isEmpty() ? file : QDir(folder.path()).relativeFilePath(file));
    EXPECT_EQ(names, (QStringList{"chosen.txt", "a/y.vcard", "a/z.VCF", "b.vcf", "c/d/e.vcf"}));
    EXPECT_EQ(found.fingerprint,
              findContactFiles({path("chosen.txt"), path("missing"), path("")}).fingerprint);
}

TEST_F(VCardSourceTest, SeesEveryKindOfChange) {
    write("book/1.vcf", cardOf("a", "EMAIL:1@x\n"));
    load({path("book"), path("later/contacts"), path("chosen.vcf")});
    EXPECT_EQ(idAt("1@x"), "a");

    write("book/1.vcf", cardOf("edited", "EMAIL:1@x\n"));
    EXPECT_TRUE(comesToKnow("1@x", "edited"));
    replace("book/1.vcf", cardOf("renamed", "EMAIL:1@x\n"));
    EXPECT_TRUE(comesToKnow("1@x", "renamed"));
    replace("book/1.vcf", cardOf("again", "EMAIL:1@x\n"));
    EXPECT_TRUE(comesToKnow("1@x", "again")) << "still watched after it was replaced";
    write("book/sub/2.vcf", cardOf("added", "EMAIL:2@x\n"));
    EXPECT_TRUE(comesToKnow("2@x", "added"));
    write("book/sub/2.vcf", cardOf("edited", "EMAIL:2@x\n"));
    EXPECT_TRUE(comesToKnow("2@x", "edited")) << "new folders and files are watched";
    write("book/sub/0.vcf", cardOf("first", "EMAIL:2@x\n"));
    EXPECT_TRUE(comesToKnow("2@x", "first"));
    ASSERT_TRUE(QFile::remove(path("book/sub/0.vcf")));
    EXPECT_TRUE(comesToKnow("2@x", "edited")) << "removed";
    write("chosen.vcf", cardOf("chosen", "EMAIL:3@x\n"));
    EXPECT_TRUE(comesToKnow("3@x", "chosen")) << "was missing";
    write("later/contacts/4.vcf", cardOf("late", "EMAIL:4@x\n"));
    EXPECT_TRUE(comesToKnow("4@x", "late")) << "its folder was missing";
    ASSERT_TRUE(QDir().mkpath(path("book/empty")));
    test::waitFor([] { return false; }, 400);  // longer than a burst: it is seen while it is empty
    write("book/empty/5.vcf", cardOf("filled", "EMAIL:5@x\n"));
    EXPECT_TRUE(comesToKnow("5@x", "filled")) << "its folder was empty";
    ASSERT_TRUE(QDir(path("later/contacts")).removeRecursively());
    write("later/contacts/4.vcf", cardOf("later", "EMAIL:4@x\n"));
    EXPECT_TRUE(comesToKnow("4@x", "later")) << "its folder was recreated";
}

TEST_F(VCardSourceTest, ReportsABurstOnceAndOtherFilesNever) {
    write("book/0.vcf", cardOf("0", "EMAIL:0@x\n"));
    load({path("book"), path("chosen.vcf")});
    for (int i = 1; i <= 200; i++)
        write(QStringLiteral("book/%1.vcf").arg(i),
              cardOf(QByteArray::number(i), "EMAIL:" + QByteArray::number(i) + "@x\n"));
    EXPECT_TRUE(comesToKnow("200@x", "200"));
    const auto settle = [&] {
        qsizetype before = -1;
        while (before != published->size()) {
            before = published->size();
            test::waitFor([] { return false; }, 1500);  // ten bursts long
        }
        return before;
    };
    const qsizetype before = settle();
    EXPECT_LT(before, 50) << "far less than one for each file";

    write("book/notes.txt", "no card");
    write("nobody.vcf", cardOf("n", "EMAIL:n@x\n"));
    EXPECT_EQ(settle(), before);
}

TEST_F(VCardSourceTest, ReportsDamageAndReadsTheRest) {
    write("1.vcf", "BEGIN:VCARD\nFN:Lost\n" + cardOf("a", "EMAIL:a@x\n"));
    write("2.vcf", cardOf("b", "EMAIL:b@x\n"));
    write("3.vcf", "no card");
    const auto lines = std::make_shared<test::LogLines>();
    VCardSource files({folder.path()}, VCardSource::Chosen::byUser, lines);
    QStringList ids;
    files.enumeration()([&](const ContactRecord& contact) { ids += contact.identifier; }, {});
    EXPECT_EQ(ids, (QStringList{"a", "b"}));
    EXPECT_EQ(
        lines->take(),
        (QStringList{
            "vCard:    Skipped a malformed contact card: " + path("1.vcf") + ":1 it has no end",
            "ERROR: Could not read contacts: " + path("3.vcf") + " There is no contact card in it",
        }));
    EXPECT_TRUE(files.hasFreeContacts());
    EXPECT_FALSE(VCardSource({}, VCardSource::Chosen::byUser).hasFreeContacts());
    EXPECT_FALSE(VCardSource({"/"}, VCardSource::Chosen::byCustom).hasFreeContacts());
}

TEST_F(VCardSourceTest, ReadsATableWithoutPictures) {
    write("1.vcf", cardOf("a", "NICKNAME:Al\nTEL:1 2\nPHOTO;ENCODING=b:/9j/4AAQSkZJRg==\n"));
    write("2.vcf", "no card");
    const auto lines = std::make_shared<test::LogLines>();
    const ContactsStore::Table table = readContactTable({path("1.vcf")}, lines);
    EXPECT_EQ(table.value("12"), (ContactsStore::Info{"a", "1 2", "A", "Al"}));
    for (const char* bad : {"none.vcf", "2.vcf"})
        EXPECT_THROW((void)readContactTable({path("1.vcf"), path(bad)}, lines), ContactsError)
            << bad;
}

}  // namespace
