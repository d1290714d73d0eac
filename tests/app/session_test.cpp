// SPDX-License-Identifier: MIT
//
// What one session leaves to the next, and one start of the program to another.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QLocalSocket>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <future>

#include "app/desktop/single_instance.h"
#include "app/documents/contacts_bar.h"
#include "timeline/timeline_view.h"
#include "windows.h"

namespace {

using namespace Qt::StringLiterals;
using namespace vell::test;
using vell::DocumentWindow;
using vell::SingleInstance;
using vell::TimelineView;

using Session = Windows;

TEST_F(Session, WindowsAndPlacesAreRestored) {
    struct Place {
        QString path;
        QRect geometry;
        qsizetype row;
        qreal pointsAbove;
    };
    Place places[] = {{file(u"a.ichat"_s, chat(500)), {40, 50, 560, 600}, 321, 7},
                      {file(u"b.ichat"_s, chat(500)), {90, 60, 620, 500}, 77, 0},
                      {file(u"c.ichat"_s, chat(500)), {10, 5, 530, 650}, 0, 3}};
    for (Place& place : places) {
        DocumentWindow* window = opened(place.path);
        window->setGeometry(place.geometry);
        QCoreApplication::processEvents();
        auto* timeline = window->findChild<TimelineView*>();
        timeline->scroller().scrollToRow(place.row, place.pointsAbove);
        EXPECT_EQ(timeline->scroller().topRow(), place.row);
    }
    end();
    QFile::remove(places[1].path);
    start();
    program->openWithoutFiles();
    EXPECT_FALSE(openWindow("welcomeWindow"));
    const auto windows = documentWindows();
    ASSERT_EQ(windows.size(), 2u) << "a removed file is not an error";
    for (const size_t i : {0u, 1u}) {
        const Place& place = places[i * 2];
        ASSERT_EQ(windows[i]->path(), place.path);
        ASSERT_TRUE(waitUntil([&] { return windows[i]->isLoaded(); }));
        QCoreApplication::processEvents();
        EXPECT_EQ(windows[i]->geometry(), place.geometry);
        auto* timeline = windows[i]->findChild<TimelineView*>();
        EXPECT_EQ(timeline->scroller().topRow(), place.row);
        EXPECT_EQ(timeline->scroller().pointsAbove(), place.pointsAbove);
    }
    // Closed one after the other, the last one is restored.
    windows[0]->close();
    windows[1]->close();
    deleteDeferred();
    end();
    start();
    program->openWithoutFiles();
    ASSERT_EQ(documentWindows().size(), 1u);
    EXPECT_EQ(documentWindows().front()->path(), places[2].path);

    QSettings().setValue(u"RestoreWindows"_s, false);
    end();
    start();
    program->openWithoutFiles();
    EXPECT_TRUE(documentWindows().empty());
    EXPECT_TRUE(openWindow("welcomeWindow"));
}

TEST_F(Session, AnUnansweredQuestionIsAskedAgain) {
    const auto ask = [&] {
        DocumentWindow* window = documentWindows().front();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        window->findChild<QPushButton*>(u"grantOrDeny"_s)->click();
        auto* question = openWindow<QMessageBox>("contactsPrompt");
        EXPECT_TRUE(question) << "the button does nothing";
        return question;
    };
    const QString path = file(u"a.ichat"_s, chat(3));
    const auto isAnswered = [] {
        return QSettings().contains(u"ContactsAccess"_s) ||
               QSettings().contains(u"VellDidRequestABAccess"_s);
    };
    opened(path);
    QTest::keyClick(ask(), Qt::Key_Escape);
    deleteDeferred();
    ask()->close();
    deleteDeferred();
    EXPECT_FALSE(isAnswered());

    opened(file(u"b.ichat"_s, chat(3)));
    QWidget* asking = ask()->parentWidget();
    ASSERT_TRUE(asking);
    asking->close();
    deleteDeferred();
    ask();
    end();
    EXPECT_FALSE(isAnswered()) << "quitting is no answer";

    start();
    opened(path);
    QMessageBox* question = ask();
    for (QAbstractButton* button : question->buttons()) {
        if (button->text() == u"Don’t Allow"_s) button->click();
    }
    const auto* bar = documentWindows().front()->findChild<vell::ContactsBar*>();
    EXPECT_TRUE(waitUntil([&] { return !bar->isVisible(); }));
    EXPECT_FALSE(QSettings().value(u"ContactsAccess"_s, true).toBool());
}

TEST_F(Session, ALaterStartHandsItsFilesOver) {
    SingleInstance first;
    EXPECT_TRUE(first.listen());
    QList<QStringList> received;
    QObject::connect(&first, &SingleInstance::received,
                     [&](const QStringList& paths) { received.append(paths); });
    const auto handOver = [](const QStringList& paths) {
        auto handedOver =
            std::async(std::launch::async, [paths] { return SingleInstance::handOver(paths); });
        EXPECT_TRUE(waitUntil([&] {
            return handedOver.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        }));
        return handedOver.get();
    };
    QStringList many;
    for (int i = 0; i < 5000; ++i)
        many.append(u"/tmp/päth with\nlines %1"_s.arg(i));
    EXPECT_TRUE(handOver({u"/a.ichat"_s, u"/b.ichat"_s}));
    EXPECT_TRUE(handOver({}));
    EXPECT_TRUE(handOver(many));
    EXPECT_EQ(received, QList<QStringList>({{u"/a.ichat"_s, u"/b.ichat"_s}, {}, many}));

    // Malformed requests do no harm.
    const QDir runtime(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
    const QStringList sockets = runtime.entryList({u"dev.quillmark.vell-*"_s}, QDir::System);
    ASSERT_EQ(sockets.size(), 1);
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("\x00", 1), QByteArray("\x00\xd8\x00", 3),
          QByteArray("\xff\xff\xff\xfe garbage"), QByteArray(1 << 20, '\x01')}) {
        QLocalSocket stranger;
        stranger.connectToServer(runtime.filePath(sockets.front()));
        ASSERT_TRUE(stranger.waitForConnected());
        stranger.write(bytes);
        stranger.flush();
        QCoreApplication::processEvents();
        stranger.abort();
        QCoreApplication::processEvents();
    }
    // A start at the same moment doesn't replace the first.
    SingleInstance second;
    EXPECT_FALSE(second.listen());
    received.clear();
    EXPECT_TRUE(handOver({u"/c.ichat"_s}));
    EXPECT_EQ(received, QList<QStringList>({{u"/c.ichat"_s}}));
}

TEST_F(Session, FilesOfOtherUsersAreRefused) {
    const QDir runtime(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
    const QByteArray folder = QFile::encodeName(runtime.path());
    {
        // Neither a folder that others can enter nor the current one gets a socket or lock.
        ASSERT_EQ(::chmod(folder.constData(), 0750), 0);
        const QByteArray temporary = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(this->folder.path()));
        file(u"runtime-"_s + QString::fromLocal8Bit(::getpwuid(::geteuid())->pw_name),
             "in the way");
        const QString before = QDir::currentPath();
        QDir::setCurrent(runtime.path());
        SingleInstance alone;
        EXPECT_FALSE(alone.listen());
        EXPECT_FALSE(SingleInstance::handOver({}));
        EXPECT_TRUE(runtime.entryList({u"*vell-*"_s}, QDir::AllEntries | QDir::System).isEmpty());
        QDir::setCurrent(before);
        temporary.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", temporary);
        ::chmod(folder.constData(), 0700);
    }
    if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
    SingleInstance ours;
    QSignalSpy received(&ours, &SingleInstance::received);
    ASSERT_TRUE(ours.listen());
    const QString socket =
        runtime.filePath(runtime.entryList({u"dev.quillmark.vell-*"_s}, QDir::System).front());
    ::chmod(folder.constData(), 0755);
    ::chmod(QFile::encodeName(socket).constData(), 0777);
    QLocalSocket stranger;
    ASSERT_EQ(::seteuid(65534), 0);
    stranger.connectToServer(socket);
    const bool isConnected = stranger.waitForConnected();
    ASSERT_EQ(::seteuid(0), 0);
    ::chmod(folder.constData(), 0700);
    ASSERT_TRUE(isConnected);
    stranger.write(QByteArray("\0\0", 2));  // brings it to the front
    stranger.flush();
    EXPECT_TRUE(waitUntil([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_TRUE(received.isEmpty());
}

TEST_F(Session, StaleSocketIsReplaced) {
    const QDir runtime(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
    {
        SingleInstance first;
        first.listen();
        const QString path =
            runtime.filePath(runtime.entryList({u"dev.quillmark.vell-*"_s}, QDir::System).front());
        QFile::rename(path, path + u".kept"_s);
    }
    const QString kept = runtime.entryList({u"*.kept"_s}, QDir::System).value(0);
    ASSERT_FALSE(kept.isEmpty());
    QFile::rename(runtime.filePath(kept), runtime.filePath(kept.chopped(5)));
    EXPECT_FALSE(SingleInstance::handOver({}));
    SingleInstance next;
    QSignalSpy received(&next, &SingleInstance::received);
    next.listen();
    auto handedOver = std::async(std::launch::async, [] { return SingleInstance::handOver({}); });
    EXPECT_TRUE(waitUntil([&] { return received.size() == 1; }));
    EXPECT_TRUE(handedOver.get());
}

}  // namespace
