// SPDX-License-Identifier: MIT
#include "app/documents/document.h"

#include <gtest/gtest.h>

#include <QFile>

#include "foundation/print.h"
#include "transcript/content_types.h"
#include "transcript/load_log.h"

namespace {

using foundation::Data;
using foundation::FileWrapper;
using vell::VellDocument;

/// Collects printed lines while it lives.
class Printed {
  public:
    Printed() {
        foundation::setPrintFunction([this](QStringView line) { lines.append(line.toString()); });
    }
    ~Printed() { foundation::setPrintFunction({}); }
    QStringList lines;
};

Data fixture(const char* name) {
    QFile file(QStringLiteral(VELL_TEST_DATA "/transcripts/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return Data(file.readAll());
}

TEST(Document, EveryFailureIsLoggedPresentedAndReportedAsOneError) {
    struct Case {
        const char* what;
        std::shared_ptr<FileWrapper> file;
        bool converts;
    };
    const Case cases[] = {
        {"a folder", std::make_shared<FileWrapper>(FileWrapper::Kind::directory), false},
        {"a file that can't be read", std::make_shared<FileWrapper>(FileWrapper::Kind::regularFile),
         false},
        {"a file of no bytes", std::make_shared<FileWrapper>(Data()), true},
        {"a foreign file", std::make_shared<FileWrapper>(Data(QByteArray("GIF89a"))), true},
    };
    for (const Case& c : cases) {
        const Printed printed;
        int windows = 0;
        try {
            (void)VellDocument::read(*c.file, [&] { ++windows; });
            ADD_FAILURE() << c.what << " was read";
        } catch (const foundation::Error& error) {
            EXPECT_EQ(error.domain(), u"NSCocoaErrorDomain") << c.what;
            EXPECT_EQ(error.code(), 259) << c.what;
            EXPECT_TRUE(error.debugDescription().isEmpty()) << c.what;
        }
        EXPECT_EQ(windows, 1) << c.what;
        const QString log = vell::tesselLoadLog()->grabLog();
        EXPECT_EQ(log.endsWith(u"Failed to load the raw file into memory.\n"), !c.converts)
            << c.what;
        ASSERT_EQ(printed.lines.size(), c.converts ? 1 : 0) << c.what;
        for (const QString& line : printed.lines)
            EXPECT_TRUE(line.startsWith(u"ERROR: ")) << c.what;
    }
}

TEST(Document, KeepsTheBytesAndTheDate) {
    FileWrapper file(fixture("keyed-007@UTC.ichat"));
    EXPECT_NO_THROW((void)VellDocument::read(file, [] {})) << "a file without a date opens";
    file.modificationDate = foundation::Date{268405445};
    const VellDocument document = VellDocument::read(file, [] {});
    EXPECT_EQ(document.data(), *file.contents);
    EXPECT_EQ(document.chatlog().events().front().timestamp, *file.modificationDate);
}

TEST(Document, SavingHandsBackWhatWasOpened) {
    const Data bytes = fixture("keyed-007@UTC.ichat");
    const VellDocument document = VellDocument::read(FileWrapper(bytes), [] {});
    const QString type = vell::iChatTranscriptType.identifier.toString();
    const auto existing = std::make_shared<const FileWrapper>(Data(QByteArray("other")));

    const Printed printed;
    EXPECT_EQ(document.fileWrapper(type, existing), existing);
    const auto fresh = document.fileWrapper(type, nullptr);
    EXPECT_TRUE(fresh->isRegularFile());
    EXPECT_EQ(fresh->contents, bytes);
    try {
        (void)document.fileWrapper(QStringLiteral("public.plain-text"), existing);
        ADD_FAILURE() << "another type was written";
    } catch (const foundation::Error& error) {
        EXPECT_EQ(error.domain(), u"NSCocoaErrorDomain");
        EXPECT_EQ(error.code(), 66062);
    }
    EXPECT_EQ(
        printed.lines,
        QStringList(
            {QStringLiteral("Save: returning existing wrapper (FB9122684) ..."),
             QStringLiteral("Save: returning new wrapper for data (#%1 bytes)").arg(bytes.size()),
             QStringLiteral("Save error: invalid type: public.plain-text")}));
    EXPECT_EQ(VellDocument::readableContentTypes(), QStringList{type});
    EXPECT_TRUE(VellDocument::writableContentTypes().isEmpty());
}

TEST(Document, TheLoadLogTellsTheExtensionAndNothingElseOfTheName) {
    const QString stems[] = {
        QStringLiteral("secretname"),        QStringLiteral("secret.name"),
        QStringLiteral("secret\nname"),      QStringLiteral("sécret naïve"),
        QStringLiteral("秘密の会話"),        QStringLiteral("secret%@name%n"),
        QStringLiteral("\u202esecret/name"), QStringLiteral(".secret"),
        QStringLiteral("secret\\name\t"),    QStringLiteral("👩‍👩‍👧 secret")};
    for (const QString& stem : stems) {
        FileWrapper file(Data(QByteArray("no transcript")));
        file.filename = stem + QStringLiteral(".ichat");
        file.preferredFilename = file.filename;
        const Printed printed;
        EXPECT_THROW((void)VellDocument::read(file, [] {}), foundation::Error);
        const QString log = vell::tesselLoadLog()->grabLog();
        EXPECT_TRUE(log.contains(u"  Extension: .ichat\n"));
        EXPECT_FALSE(log.contains(stem)) << stem.toStdString();
        EXPECT_FALSE(log.contains(u"ecret")) << stem.toStdString();
        EXPECT_FALSE(printed.lines.join(u'\n').contains(stem)) << stem.toStdString();
    }
}

}  // namespace
