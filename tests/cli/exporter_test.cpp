// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>

#include "cli/output.h"
#include "cli/program.h"
#include "foundation/local_path.h"
#include "support/transcript_writer.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::Result;

/// Runs the program for JSON.
Result run(const QStringList& arguments, const QByteArray& input = {}) {
    return test::run(QStringList{u"--format"_s, u"json"_s} + arguments, input);
}

QByteArray transcript(const char* text) {
    support::Transcript result{.service = u"AIM"_s, .people = {{u"ann"_s}}};
    result.messages.push_back(
        {.sender = 0, .date = 1000, .body = {support::words(QString::fromUtf8(text))}});
    return support::keyedTranscript(result);
}

/// A folder with the transcripts of the tests below.
class Export : public testing::Test {
  protected:
    QTemporaryDir folder_;

    QString path(const char* name) const { return folder_.filePath(QString::fromUtf8(name)); }
    QString given(const char* name, const QByteArray& bytes = transcript("hi")) const {
        QDir().mkpath(QFileInfo(path(name)).path());
        test::writeFile(path(name), bytes);
        return path(name);
    }
    QStringList written(const char* name) const {
        return QDir(path(name)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
};

TEST_F(Export, WrongUsage) {
    struct Row {
        QStringList arguments;
        const char* error;
    };
    const QString a = given("a.ichat");
    const Row rows[] = {
        {{}, "vell-export: no file given\n"},
        {{u"--colour"_s, a}, "vell-export: Unknown option 'colour'.\n"},
        {{u"--format"_s, u"pdf"_s, a}, "vell-export: unknown format: pdf (known: "},
        {{u"--time-zone"_s, u"Mars/Olympus"_s, a},
         "vell-export: unknown time zone: Mars/Olympus\n"},
        {{a, a}, "vell-export: several files need --output DIR\n"},
        {{u"--output"_s, a, a, a}, " is no folder\n"},
        {{u"--output"_s, QString(), a}, "vell-export: an output without a name\n"},
    };
    for (const Row& row : rows) {
        const Result result = run(row.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.error.toStdString(), testing::HasSubstr(row.error));
        EXPECT_TRUE(result.output.isEmpty());
    }
    EXPECT_TRUE(run({u"--help"_s}).output.startsWith("Usage: vell-export "));
    EXPECT_TRUE(run({u"--version"_s}).output.startsWith("vell-export "));
}

TEST_F(Export, OneFileGoesToStandardOutput) {
    const Result named = run({given("-odd name.ichat")});
    EXPECT_EQ(named.status, 0);
    EXPECT_TRUE(named.output.startsWith("{\"schema\":1,"));
    EXPECT_TRUE(named.output.endsWith("]}\n"));
    EXPECT_EQ(named.error, QString());
    EXPECT_EQ(run({u"-"_s}, transcript("hi")).output, named.output);
}

TEST_F(Export, DiagnosticsNeverGetIntoTheDocument) {
    support::Transcript empty{.service = u"AIM"_s, .people = {{u"ann"_s}}};
    empty.messages.push_back({.sender = 0});
    const Result result = run({u"-"_s}, support::keyedTranscript(empty));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error.toStdString(),
              "WARN: Found no content in message: <Message: ann read>\n");
    EXPECT_FALSE(result.output.contains("WARN"));
}

TEST_F(Export, SeveralFilesAreNamedAfterThemselves) {
    const QStringList inputs{given("a.ichat"),    given("x/a.ichat"), given("a-2.ichat"),
                             given("y/.hidden"),  given("b.c.ichat"), u"-"_s,
                             given("noextension")};
    const Result result =
        run(QStringList{u"--output"_s, path("new/out")} + inputs, transcript("in"));
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(written("new/out"),
              (QStringList{u".hidden.json"_s, u"a-2-2.json"_s, u"a-2.json"_s, u"a.json"_s,
                           u"b.c.json"_s, u"noextension.json"_s, u"stdin.json"_s}));
    EXPECT_TRUE(test::readFile(path("new/out/stdin.json")).contains("\"in\""));
}

TEST_F(Export, NamesInNoEncodingAnybodyKnows) {
    const QByteArray name = folder_.path().toUtf8() + "/Zo\xe9 \xf0\x9f\x90\x88.ichat";
    std::FILE* file = std::fopen(name.constData(), "wb");
    ASSERT_TRUE(file);
    const QByteArray bytes = transcript("hi");
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
    std::fclose(file);
    const QString argument = foundation::pathFromArgument(name.constData());
    EXPECT_EQ(run({u"--output"_s, path("out"), argument, argument}).status, 0);
    EXPECT_EQ(written("out"),
              (QStringList{u"Zo\ufffd \U0001f408-2.json"_s, u"Zo\ufffd \U0001f408.json"_s}));
    std::remove(name.constData());  // the temporary folder can't: to Qt there is no such name
}

TEST_F(Export, FailuresAreToldAndTheOthersDone) {
    const QString good = given("good.ichat");
    const QString bad = given("bad\nname.ichat", "no transcript");
    const Result result =
        run({u"--output"_s, path("out"), bad, path("missing"), folder_.path(), good});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(written("out"), QStringList{u"good.json"_s});
    const QStringList lines = result.error.split(u'\n');
    ASSERT_EQ(lines.size(), 4) << result.error.toStdString();
    EXPECT_TRUE(lines[0].startsWith(u"vell-export: "_s + path("bad name.ichat") +
                                    u": no transcript, or damaged: "_s));
    EXPECT_EQ(lines[1], u"vell-export: "_s + path("missing") + u": No such file or directory"_s);
    EXPECT_TRUE(lines[2].startsWith(u"vell-export: "_s + folder_.path() + u": "_s));
}

TEST_F(Export, TheLoadLogOfAFailedFileIsPrintedOnDemand) {
    const Result result = run({u"--load-log"_s, given("secret name.old.ichat", "nothing")});
    EXPECT_EQ(result.status, 1);
    const QString log = result.error.section(u'\n', 1);
    EXPECT_TRUE(log.startsWith(
        u"Opening new file [name not exposed]:\n  not-a-dir\n  FILE\n  not-a-symlink\n"
        "  wrapper has filename\n  Extension: .ichat\n---\n\n\n"
        "### Attempt to load from data w/ size: 7\n\n"));
    EXPECT_TRUE(log.endsWith(u"Throwing original error\n"));
    EXPECT_FALSE(log.contains(u"secret"));
    EXPECT_EQ(run({u"--load-log"_s, given("good.ichat")}).error, QString());
}

TEST_F(Export, ExistingFilesAreReplacedOnlyOnDemand) {
    const QString input = given("a.ichat");
    const QString output = given("out/a.json", "old");
    const Result refused = run({u"--output"_s, path("out"), input});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(test::readFile(output), "old");

    EXPECT_EQ(run({u"--force"_s, u"--output"_s, output, input}).status, 0);
    EXPECT_TRUE(test::readFile(output).startsWith("{\"schema\":1,"));
    EXPECT_EQ(written("out"), QStringList{u"a.json"_s});  // no temporary file is left
}

TEST_F(Export, ForceReplacesNoTranscriptAndNothingBehindALink) {
    const QString input = given("a.json");
    const QByteArray before = test::readFile(input);
    for (const QString& output :
         {folder_.path(), input, path("../") + QFileInfo(folder_.path()).fileName()}) {
        const Result result = run({u"--force"_s, u"--output"_s, output, input});
        EXPECT_EQ(result.status, 1) << output.toStdString();
        EXPECT_EQ(test::readFile(input), before);
    }
    // A link in the folder is replaced itself; what it leads to stays.
    const QString outside = given("outside", "precious");
    QDir().mkpath(path("out"));
    ASSERT_TRUE(QFile::link(outside, path("out/a.json")));
    EXPECT_EQ(run({u"--force"_s, u"--output"_s, path("out"), input}).status, 0);
    EXPECT_EQ(test::readFile(outside), "precious");
    EXPECT_TRUE(test::readFile(path("out/a.json")).startsWith("{\"schema\":1,"));
}

TEST_F(Export, UnwritableOutputs) {
    const QString input = given("a.ichat");
    const Result noFolder = run({u"--output"_s, path("no/such/a.json"), input});
    EXPECT_EQ(noFolder.status, 1);
    EXPECT_TRUE(noFolder.error.contains(u"No such file or directory"));
    const Result noFolderHere = run({u"--output"_s, input + u"/below/"_s, input});
    EXPECT_EQ(noFolderHere.status, 1);
    EXPECT_TRUE(noFolderHere.error.contains(u"the folder can't be made"));
    const Result device = run({u"--force"_s, u"--output"_s, u"/dev/null"_s, input});
    EXPECT_EQ(device.status, 1);
    EXPECT_FALSE(QFileInfo(u"/dev/null"_s).isFile());
}

}  // namespace
}  // namespace vell
