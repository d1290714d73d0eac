// SPDX-License-Identifier: MIT
//
// The running program opens files that aren't transcripts, or no longer are.
#include <sys/stat.h>

#include <QPlainTextEdit>
#include <QProgressBar>
#include <QRandomGenerator>
#include <QTest>
#include <vector>

#include "app/documents/load_log_window.h"
#include "windows.h"
#include "writers/non_keyed_archive_writer.h"

namespace {

using namespace Qt::StringLiterals;
using namespace vell::test;

writers::Transcript someChat() {
    writers::Transcript transcript{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {0, 1}, {}};
    for (const char* text : {"one", "two", "three"})
        transcript.messages.push_back(
            {.sender = 0, .date = 1e8, .body = {writers::words(QString::fromUtf8(text))}});
    return transcript;
}

void addTruncated(std::vector<QByteArray>& files) {
    const QByteArray keyed = keyedTranscript(someChat());
    const QByteArray xml = keyedTranscript(someChat(), {.xml = true});
    const QByteArray nonKeyed = nonKeyedTranscript(someChat());
    constexpr int cuts = 48;
    for (int i = 0; i < cuts; ++i) {
        files.push_back(keyed.left(keyed.size() * i / cuts));
        files.push_back(xml.left(xml.size() * i / cuts));
        files.push_back(nonKeyed.left(nonKeyed.size() * i / (2 * cuts)));
    }
}

void addForeign(std::vector<QByteArray>& files) {
    for (const char* begin : {"GIF89a", "%PDF-1.4", "\x89PNG\r\n\x1a\n", "\xff\xd8\xff\xe0",
                              "PK\x03\x04", "{\\rtf1", "<!DOCTYPE html>",
                              "\x7f"
                              "ELF",
                              "#!/bin/sh\n", "From: me\n", "SQLite format 3", "bplist15",
                              "bplist00", "\x04\x0bstreamtyped", "\x04\x0btypedstream",
                              "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>",
                              "\xef\xbb\xbftext", "\xff\xfet\0e\0"}) {
        files.push_back(QByteArray(begin));
        files.push_back(QByteArray(begin) + QByteArray(5000, ' '));
    }
    for (quint32 seed = 1; seed <= 40; ++seed) {
        QRandomGenerator random(seed);
        QByteArray bytes(static_cast<qsizetype>(seed) * 97, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random.bounded(256));
        files.push_back(seed % 2 ? bytes : "bplist00" + bytes);
    }
    files.push_back(QByteArray(20'000'000, '\0'));
    writers::NonKeyedArchiveWriter deep;
    for (int i = 0; i < 100'000; ++i)
        deep.group("[2147483647[2147483647c]]");
    files.push_back(deep.bytes());
}

class HostileFiles : public Windows {
  protected:
    /// Logs of files that other tests have opened are shown late, and would be counted here.
    static void SetUpTestSuite() {
        QTest::qWait(1000);
        closeLogWindows();
    }
    /// What the dialog says of each file.
    static QStringList reported() {
        const QWidget* dialog = openWindow("openFailed");
        if (!dialog) return {};
        return dialog->findChild<QPlainTextEdit*>()->toPlainText().split(u'\n');
    }
    static QString logText(const QWidget* window) {
        return window->findChild<QPlainTextEdit*>(u"loadLogText"_s)->toPlainText();
    }
    static void closeLogWindows() {
        while (!vell::logWindows().empty()) {
            vell::logWindows().front()->close();
            deleteDeferred();
        }
    }
};

TEST_F(HostileFiles, EachOfHundredsIsReportedAndNothingElseHappens) {
    std::vector<QByteArray> files;
    addTruncated(files);
    addForeign(files);
    ASSERT_GE(files.size(), 200u);
    const QPointer<vell::DocumentWindow> good = opened(file(u"good.ichat"_s, chat(10)));

    qsizetype count = 0;
    for (const QByteArray& bytes : files) {
        const QString path = file(u"broken %1.ichat"_s.arg(count), bytes);
        program->open({path});
        ASSERT_TRUE(waitUntil([&] { return reported().size() > count; }))
            << "nothing was reported of " << count;
        ASSERT_EQ(reported().size(), ++count);
        ASSERT_EQ(documentWindows().size(), 1u) << "a window was left by " << count;
    }
    EXPECT_EQ(reported().front(),
              u"The document “broken 0.ichat” could not be opened. The file is damaged or not a "
              "transcript."_s);
    EXPECT_TRUE(waitUntil([&] { return std::ssize(vell::logWindows()) == count; }));
    closeLogWindows();

    ASSERT_TRUE(good);
    EXPECT_TRUE(opened(file(u"another.ichat"_s, chat(10)))) << "the program goes on";
}

TEST_F(HostileFiles, UnreadableFilesAreReported) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.filePath(u"pipe"_s)).constData(), 0600), 0);
    QFile::link(u"/dev/zero"_s, folder.filePath(u"endless"_s));
    QFile::link(u"nowhere"_s, folder.filePath(u"dangling"_s));
    QFile::link(u"circle"_s, folder.filePath(u"circle"_s));
    for (const char* name : {"pipe", "endless", "dangling", "circle", "missing.ichat"}) {
        program->open({folder.filePath(QString::fromLatin1(name))});
        ASSERT_TRUE(waitUntil([&] { return !reported().isEmpty(); })) << name;
        const QString sentence = reported().join(u'\n');
        EXPECT_TRUE(sentence.startsWith(
            u"The document “%1” could not be opened. "_s.arg(QLatin1String(name))))
            << sentence.toStdString();
        EXPECT_EQ(sentence.contains(u"There is no such file."_s), name[0] != 'p' && name[0] != 'e')
            << sentence.toStdString();
        openWindow("openFailed")->close();
        deleteDeferred();
    }
    ASSERT_TRUE(waitUntil([] { return vell::logWindows().size() == 2; }));
    for (const QWidget* window : vell::logWindows())
        EXPECT_TRUE(logText(window).contains(u"Failed to load the raw file into memory.\n"_s));
    closeLogWindows();
}

TEST_F(HostileFiles, LogsBeginAtTheLeftInEveryLanguage) {
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    program->open({file(u"broken.ichat"_s, "broken")});
    ASSERT_TRUE(waitUntil([] { return vell::logWindows().size() == 1; }));
    auto* editor = vell::logWindows().front()->findChild<QPlainTextEdit*>(u"loadLogText"_s);
    const QImage start = editor->viewport()->grab({0, 0, 80, 60}).toImage();
    QImage empty(start.size(), start.format());
    empty.fill(start.pixelColor(0, 0));
    EXPECT_NE(start, empty);
    closeLogWindows();
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(HostileFiles, EachLogOfTwentyAtOnceIsAboutItsOwnFile) {
    constexpr int count = 20;
    QStringList paths;
    QStringList expected;
    for (int i = 0; i < count; ++i) {
        const bool isBroken = i % 2 != 0;
        const QByteArray bytes = isBroken ? QByteArray(100 + i, char('a' + i)) : chat(50 + i);
        paths.append(file(u"%1.ichat"_s.arg(i), bytes));
        if (isBroken) expected.append(u"%1 %2"_s.arg(100 + i).arg(QChar(u'a' + i)));
    }
    program->open(paths);
    ASSERT_TRUE(waitUntil([] { return vell::logWindows().size() == count / 2; }));
    EXPECT_EQ(documentWindows().size(), size_t(count / 2));
    EXPECT_EQ(reported().size(), count / 2);

    QStringList found;
    for (const QWidget* window : vell::logWindows()) {
        const QString text = logText(window);
        EXPECT_TRUE(text.startsWith(u"#  App Version: "_s));
        ASSERT_EQ(text.count(u"### Attempt to load from data w/ size: "_s), 1);
        const QString size = text.section(u"w/ size: "_s, 1).section(u'\n', 0, 0);
        // The dump writes the bytes as text beside their hex form.
        const qsizetype dump = text.indexOf(QString(16, text.section(u'|', 1, 1).front()));
        ASSERT_GE(dump, 0) << text.toStdString();
        found.append(size + u' ' + text[dump]);
    }
    found.sort();
    EXPECT_EQ(found, expected);
    closeLogWindows();
}

TEST_F(HostileFiles, AStalledFileDelaysNothingElse) {
    end();
    const auto reader = std::make_shared<StallingReader>();
    start(reader);
    const QString stalled = file(u"stalled.ichat"_s, chat(3));
    const QString alsoStalled = file(u"also stalled.ichat"_s, chat(3));
    program->open({stalled, alsoStalled});
    const QPointer<vell::DocumentWindow> waiting = windowOf(stalled);
    ASSERT_TRUE(waiting && waiting->isVisible()) << "the window shows at once";
    const QPointer<QProgressBar> spinner = waiting->findChild<QProgressBar*>();
    EXPECT_FALSE(spinner->isVisible());
    EXPECT_TRUE(waitUntil([&] { return spinner->isVisible(); }));

    EXPECT_TRUE(opened(file(u"good.ichat"_s, chat(3))));
    waiting->close();
    deleteDeferred();
    EXPECT_FALSE(waiting);
    QElapsedTimer timer;
    timer.start();
    end();
    EXPECT_LT(timer.elapsed(), 1000) << "quitting waited for the stalled file";
    reader->release();
}

}  // namespace
