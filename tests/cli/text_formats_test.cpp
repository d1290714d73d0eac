// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include "cli/program.h"
#include "writers/transcript_writer.h"

namespace vell::test {
namespace {

using namespace Qt::StringLiterals;

/// Two people, and a message without content, which causes a warning.
QByteArray transcript() {
    writers::Transcript result{
        .service = u"AIM"_s, .people = {{u"ann"_s}, {u"bob"_s}}, .participants = {1}};
    result.messages.push_back({.sender = 0, .date = 158187845, .body = {writers::words(u"Hi*"_s)}});
    result.messages.push_back({.sender = 1, .date = 158187905});
    return writers::keyedTranscript(result);
}

TEST(TextFormats, MarkdownIsTheDefaultAndDatesFollowTheOptions) {
    const QStringList place{u"--time-zone"_s, u"Asia/Kolkata"_s, u"--locale"_s, u"de_DE"_s};
    EXPECT_EQ(run(place + QStringList{u"-"_s}, transcript()).output,
              "\n# 06.01.2006, 02:34\n\n*ann:*\n\nHi\\*\n\n*bob:*\n\n### 02:35\n>\n");
    EXPECT_EQ(run(QStringList{u"--time-zone"_s, u"UTC"_s, u"--locale"_s, u"en-GB"_s, u"--format"_s,
                              u"text"_s, u"-"_s},
                  transcript())
                  .output,
              "5 Jan 2006, 21:04\n\nann:\n    Hi*\n\nbob (21:05):\n\n");
    const QByteArray english =
        run({u"--time-zone"_s, u"UTC"_s, u"--locale"_s, u"C"_s, u"-"_s}, transcript()).output;
    EXPECT_TRUE(english.startsWith("\n# Jan 5, 2006")) << english.toStdString();
}

TEST(TextFormats, NamePeopleFromTheGivenContacts) {
    const QTemporaryDir folder;
    const QString ann = folder.filePath(u"ann.vcf"_s), bob = folder.filePath(u"bob.vcf"_s);
    writeFile(ann, "BEGIN:VCARD\nFN:Ann Smith\nX-AIM:ann\nEND:VCARD\n");
    writeFile(bob, "BEGIN:VCARD\nFN:Bob\nNICKNAME:Bobby\nIMPP:aim:bob\nEND:VCARD\n");
    for (const QString& format : {u"markdown"_s, u"text"_s}) {
        const Result result =
            run({u"--contacts"_s, ann, u"--contacts"_s, bob, u"--format"_s, format, u"-"_s},
                transcript());
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.output.toStdString(), testing::HasSubstr("Ann Smith:"));
        EXPECT_THAT(result.output.toStdString(), testing::HasSubstr("Bobby"));
    }
    const Result missing = run({u"--contacts"_s, folder.path(), u"-"_s}, transcript());
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(missing.output.isEmpty());
    EXPECT_THAT(missing.error.toStdString(), testing::HasSubstr("the contacts can't be read: /"));
}

/// The program itself, since levels are looked up once in a process.
struct Process {
    QByteArray output;
    QByteArray error;

    explicit Process(const QString& logLevel) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LOGLEVEL"_s, logLevel);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VELL_EXPORT), {u"--format"_s, u"json"_s, u"-"_s});
        process.write(transcript());
        process.closeWriteChannel();
        process.waitForFinished();
        output = process.readAllStandardOutput();
        error = process.readAllStandardError();
    }
};

TEST(StandardOutput, ContainsOnlyTheDocument) {
    for (const QString& level : {u"trace"_s, u"nonsense"_s}) {
        const Process process(level);
        EXPECT_TRUE(QJsonDocument::fromJson(process.output).isObject())
            << process.output.toStdString();
        EXPECT_THAT(process.error.toStdString(),
                    testing::HasSubstr("WARN: Found no content in message: "));
    }
    EXPECT_THAT(Process(u"Nonsense"_s).error.toStdString(),
                testing::StartsWith("ERROR: unsupported LOGLEVEL: `nonsense`\n"));
}

}  // namespace
}  // namespace vell::test
