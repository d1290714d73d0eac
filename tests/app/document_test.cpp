// SPDX-License-Identifier: MIT
#include "app/documents/document.h"

#include <gtest/gtest.h>

#include <QFile>

#include "foundation/print.h"
#include "transcript/content_types.h"

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

TEST(Document, EveryFailureIsTheSameError) {
    for (const FileWrapper& file :
         {FileWrapper(FileWrapper::Kind::directory), FileWrapper(Data(QByteArray("GIF89a")))}) {
        const Printed printed;
        int windows = 0;
        try {
            (void)VellDocument::read(file, [&] { ++windows; });
            ADD_FAILURE() << "it was read";
        } catch (const foundation::Error& error) {
            EXPECT_EQ(error.domain(), u"NSCocoaErrorDomain");
            EXPECT_EQ(error.code(), 259);
            EXPECT_TRUE(error.debugDescription().isEmpty());
        }
        EXPECT_EQ(windows, 1);
        EXPECT_EQ(printed.lines.join(u'\n').startsWith(u"ERROR: "), file.isRegularFile());
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

TEST(Document, SavingReturnsWhatWasOpened) {
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

}  // namespace
