// SPDX-License-Identifier: MIT
//
// The commands of the windows, given by their keys and menus as a user would.
#include <QAction>
#include <QClipboard>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>
#include <QUrl>

#include "app/desktop/file_drops.h"
#include "app/documents/chat_pane.h"
#include "app/documents/find/find_bar.h"
#include "app/documents/load_log_window.h"
#include "export/markdown.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/timeline_view.h"
#include "windows.h"

namespace {

using namespace Qt::StringLiterals;
using namespace vell::test;
using vell::DocumentWindow;
using vell::TimelineView;

const QKeySequence closing(Qt::CTRL | Qt::Key_W);

class CommandsTest : public Windows {
  protected:
    CommandsTest() : window(opened(file(u"chat.ichat"_s, chat(400)))) {}

    static TimelineView& timeline(QWidget* of) { return *of->findChild<TimelineView*>(); }
    static void press(QWidget* in, const QKeySequence& keys) {
        in->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(in));
        QTest::keySequence(in, keys);
        deleteDeferred();
    }
    /// The entry of a menu, by the texts on the way to it without mnemonics.
    static QAction* entry(QWidget* of, const QStringList& way) {
        QWidget* menu = of->findChild<QMenuBar*>();
        for (qsizetype i = 0;; ++i) {
            QAction* found = nullptr;
            for (QAction* action : menu->actions()) {
                if (action->text().remove(u'&') == way[i]) found = action;
            }
            if (!found || i + 1 == way.size()) return found;
            menu = found->menu();
            Q_EMIT found->menu()->aboutToShow();
        }
    }
    static void choose(QWidget* in, const QStringList& way) {
        QAction* action = entry(in, way);
        ASSERT_TRUE(action && action->isEnabled()) << way.join(u" > ").toStdString();
        action->trigger();
        deleteDeferred();
    }

    QPointer<DocumentWindow> window;
};

TEST_F(CommandsTest, FontSizeIsSharedAndUnbounded) {
    DocumentWindow* other = opened(file(u"other.ichat"_s, chat(3)));
    const auto bothShow = [&](qint64 size) {
        EXPECT_EQ(timeline(window).fontSize(), size);
        EXPECT_EQ(timeline(other).fontSize(), size);
        EXPECT_EQ(QSettings().value(u"TimelineFontSize"_s).toLongLong(), size);
    };
    for (int i = 0; i < 3; ++i)
        press(window, QKeySequence::ZoomOut);
    bothShow(13);
    choose(other, {u"Format"_s, u"Font"_s, u"Smaller"_s});
    bothShow(12);
    press(other, QKeySequence::ZoomIn);
    choose(window, {u"Format"_s, u"Font"_s, u"Bigger"_s});
    bothShow(14);
    for (int i = 0; i < 15; ++i)
        press(window, QKeySequence::ZoomOut);
    bothShow(-1);
    choose(window, {u"View"_s, u"Actual Size"_s});
    bothShow(16);
}

TEST_F(CommandsTest, TheContentHasItsSizes) {
    EXPECT_EQ(window->findChild<vell::ChatPane*>()->centralWidget()->minimumSize(),
              QSize(272, 320));
    EXPECT_EQ(window->width(), 520);
    EXPECT_EQ(window->findChild<QToolBar*>()->actions().front()->text(), u"Copy"_s);
}

TEST_F(CommandsTest, TitleNamesParticipantsAndDays) {
    window->close();
    deleteDeferred();
    const QString day = QLocale().toString(QDate(2004, 3, 3), QLocale::ShortFormat);
    EXPECT_EQ(opened(file(u"short.ichat"_s, chat(3)))->windowTitle(), u"ann, bob — "_s + day);
    EXPECT_EQ(opened(file(u"long.ichat"_s, chat(2000)))->windowTitle(),
              u"ann, bob — %1 to %2"_s.arg(
                  day, QLocale().toString(QDate(2004, 3, 5), QLocale::ShortFormat)));
    const DocumentWindow* odd = opened(file(u"odd.ichat"_s, chat(3, u"a[*]b\n & c"_s)));
    EXPECT_TRUE(odd->windowTitle().startsWith(u"a[*][*]b & c, ann — "_s))
        << odd->windowTitle().toStdString();
    EXPECT_EQ(opened(file(u"empty.ichat"_s, chat(0)))->windowTitle(), u"ann, bob"_s)
        << "dated by its file";
    {
        const QLocale before;
        QLocale::setDefault(QLocale(u"en_US"_s));
        EXPECT_TRUE(opened(file(u"us.ichat"_s, chat(3, u"zoe"_s)))
                        ->windowTitle()
                        .endsWith(u" — 3/3/2004"_s));
        QLocale::setDefault(before);
    }
}

TEST_F(CommandsTest, WindowsOfTheSamePeopleSayMore) {
    window->close();
    deleteDeferred();
    const QString sameDay = opened(file(u"a.ichat"_s, chat(3)))->path();
    const QString title = windowOf(sameDay)->windowTitle();
    QDir(folder.path()).mkdir(u"b"_s);
    DocumentWindow* copy = opened(file(u"b/a.ichat"_s, chat(3)));
    EXPECT_EQ(windowOf(sameDay)->windowTitle(), title + u" — "_s + sameDay);
    EXPECT_EQ(copy->windowTitle(), title + u" — "_s + copy->path());
    DocumentWindow* other = opened(file(u"c.ichat"_s, chat(4)));
    EXPECT_EQ(other->windowTitle(), title + u" — c"_s);
    copy->close();
    other->close();
    deleteDeferred();
    EXPECT_EQ(windowOf(sameDay)->windowTitle(), title);
}

TEST_F(CommandsTest, FindCountsWrapsAndKeepsThePlace) {
    press(window, QKeySequence::Find);
    auto* bar = window->findChild<vell::FindBar*>();
    ASSERT_TRUE(bar->isVisible());
    auto* edit = bar->findChild<QLineEdit*>(u"findText"_s);
    const auto* count = bar->findChild<QLabel*>(u"findCount"_s);
    const auto shows = [&](const QString& text) {
        const bool does = waitUntil([&] { return count->text() == text; });
        EXPECT_TRUE(does) << count->text().toStdString();
    };
    QTest::keyClicks(edit, u"NÜMBER"_s);
    shows(u"1 of 398"_s);
    QTest::keyClick(edit, Qt::Key_Return, Qt::ShiftModifier);
    shows(u"398 of 398"_s);
    press(window, QKeySequence::FindNext);
    shows(u"1 of 398"_s);
    edit->selectAll();
    QTest::keyClicks(edit, u"last"_s);
    shows(u"1 of 1"_s);
    const qsizetype place = timeline(window).scroller().topRow();
    EXPECT_GT(place, 200);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_TRUE(timeline(window).hasFocus());
    EXPECT_EQ(timeline(window).scroller().topRow(), place);
    press(window, QKeySequence::FindNext);
    shows(u"1 of 1"_s);
    press(window, QKeySequence::Find);
    timeline(window).scroller().scrollToRow(200);
    edit->selectAll();
    QTest::keyClicks(edit, u"number"_s);
    ASSERT_TRUE(waitUntil([&] { return count->text().endsWith(u" of 398"_s); }));
    EXPECT_FALSE(count->text().startsWith(u"1 "_s)) << "before what is on the screen";
    EXPECT_EQ(timeline(window).scroller().topRow(), 200) << "it is on the screen already";
    edit->selectAll();
    QTest::keyClicks(edit, u"nowhere"_s);
    shows(u"Not found"_s);
}

TEST_F(CommandsTest, OneFileHasOneWindow) {
    QFile::link(window->path(), folder.filePath(u"link.ichat"_s));
    program->open({window->path(), folder.filePath(u"link.ichat"_s)});
    EXPECT_EQ(documentWindows().size(), 1u);
    QDir(folder.path()).mkdir(u"a folder"_s);
    program->open({folder.filePath(u"a folder"_s)});
    EXPECT_EQ(documentWindows().size(), 1u);
    ASSERT_TRUE(openWindow("findFilesWindow"));
    press(openWindow("findFilesWindow"), closing);
    EXPECT_FALSE(openWindow("findFilesWindow"));
}

TEST_F(CommandsTest, WindowMenuRaisesEachWindow) {
    DocumentWindow* other = opened(file(u"other.ichat"_s, chat(3, u"Tom & Jerry"_s)));
    window->showMinimized();
    choose(other, {u"Window"_s, u"1 "_s + window->windowTitle()});
    EXPECT_FALSE(window->isMinimized());
    QAction* own = entry(window, {u"Window"_s, u"2 "_s + other->windowTitle().remove(u'&')});
    ASSERT_TRUE(own);
    EXPECT_EQ(own->text().left(3), u"&2 "_s);
    EXPECT_TRUE(own->text().contains(u"Tom && Jerry"_s)) << "the name has no mnemonic";
    program->showAbout();
    EXPECT_TRUE(entry(window, {u"Window"_s, u"3 About Vell"_s}));
}

TEST_F(CommandsTest, RecentFilesAreListedAndCleared) {
    opened(file(u"this & that.ichat"_s, chat(3)));
    const auto recent = [] { return QSettings().value(u"RecentFiles"_s).toStringList(); };
    EXPECT_EQ(recent().size(), 2);
    QAction* recentFile = entry(window, {u"File"_s, u"Open Recent"_s, u"this  that.ichat"_s});
    ASSERT_TRUE(recentFile);
    EXPECT_EQ(recentFile->text(), u"this && that.ichat"_s) << "the name has no mnemonic";
    choose(window, {u"File"_s, u"Open Recent"_s, u"Clear Menu"_s});
    EXPECT_TRUE(recent().isEmpty());
    EXPECT_FALSE(entry(window, {u"File"_s, u"Open Recent"_s, u"Clear Menu"_s})->isEnabled());
}

TEST_F(CommandsTest, AboutIsOneWindow) {
    for (int i = 0; i < 2; ++i) {
        choose(window, {u"Help"_s, u"About Vell …"_s});
        QWidget* about = openWindow("aboutWindow");
        ASSERT_TRUE(about);
        EXPECT_EQ(about->minimumSize(), QSize(320, 400));
        EXPECT_EQ(about->maximumSize(), QSize(320, 400));
        choose(window, {u"Help"_s, u"About Vell …"_s});
        EXPECT_EQ(openWindow("aboutWindow"), about);
        press(about, closing);
        EXPECT_FALSE(about->isVisible());
    }
}

TEST_F(CommandsTest, SavedMarkdownIsTheCopiedOne) {
    choose(window, {u"File"_s, u"Save Chat as Markdown …"_s});
    auto* dialog = window->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    const QString target = folder.filePath(u"saved.md"_s);
    Q_EMIT dialog->fileSelected(target);
    dialog->close();
    QFile saved(target);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(saved.readAll()),
              generatePlainText(timeline(window).chatlog(), vell::ContactsStore()));
}

TEST_F(CommandsTest, HugeMarkdownIsNotCopiedAndSavedAfterAQuestion) {
    writers::Transcript transcript{u"AIM"_s, {{u"ann"_s}}, {}, {}};
    transcript.messages.resize(800, {.sender = 0, .originalText = u"word "_s.repeated(20'000)});
    DocumentWindow* large = opened(file(u"large.ichat"_s, writers::keyedTranscript(transcript)));
    QGuiApplication::clipboard()->setText(u"before"_s);
    choose(large, {u"Edit"_s, u"Select All"_s});
    QPointer<QMessageBox> box;
    for (const QString& command : {u"Copy Whole Chat"_s, u"Copy"_s}) {
        choose(large, {u"Edit"_s, command});
        box = large->findChild<QMessageBox*>();
        ASSERT_TRUE(box) << command.toStdString();
        box->close();
        deleteDeferred();
        EXPECT_FALSE(box);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), u"before"_s);
    }

    choose(large, {u"File"_s, u"Save Chat as Markdown …"_s});
    box = large->findChild<QMessageBox*>();
    ASSERT_TRUE(box);
    EXPECT_FALSE(large->findChild<QFileDialog*>());
    box->button(QMessageBox::Save)->click();
    auto* dialog = large->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    dialog->close();
}

TEST_F(CommandsTest, FilesMayBeDroppedOnAnyWindow) {
    program->open({file(u"broken.ichat"_s, "broken")});
    ASSERT_TRUE(waitUntil([] { return vell::logWindows().size() == 1; }));
    program->showAbout();
    program->showPreferences();
    QWidget* editor = vell::logWindows().front()->findChild<QWidget*>(u"loadLogText"_s);
    QWidget* targets[] = {window->centralWidget(), editor, openWindow("aboutWindow"),
                          openWindow("preferences"), openWindow("openFailed")};
    int number = 0;
    for (QWidget* target : targets) {
        const QString path = file(u"dropped %1.ichat"_s.arg(++number), chat(3));
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path), QUrl(u"https://example.org/x.ichat"_s)});
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        EXPECT_TRUE(enter.isAccepted()) << number;
        EXPECT_TRUE(target->window()->property(vell::isDropTargetProperty).toBool()) << number;
        QCoreApplication::sendEvent(target, &drop);
        EXPECT_TRUE(drop.isAccepted()) << number;
        EXPECT_FALSE(target->window()->property(vell::isDropTargetProperty).toBool()) << number;
        EXPECT_TRUE(waitUntil([&] { return windowOf(path) && windowOf(path)->isLoaded(); }));
    }
    EXPECT_EQ(documentWindows().size(), std::size(targets) + 1);
    const auto* failures = openWindow("openFailed")->findChild<QPlainTextEdit*>();
    EXPECT_EQ(failures->toPlainText().count(u"could not be opened"_s), 1) << "files only";
    vell::logWindows().front()->close();
}

TEST_F(CommandsTest, ClosingAndQuittingHaveTheirKeys) {
    opened(file(u"other.ichat"_s, chat(3)));
    press(window, closing);
    EXPECT_FALSE(window);
    EXPECT_EQ(documentWindows().size(), 1u);
    press(documentWindows().front(), QKeySequence(Qt::CTRL | Qt::Key_Q));
    EXPECT_TRUE(documentWindows().empty());
}

TEST_F(CommandsTest, CopyTakesTheSelectionOrTheWholeChat) {
    const auto copied = [] { return QGuiApplication::clipboard()->mimeData(); };
    press(window, QKeySequence::Copy);
    const QString whole = copied()->text();
    EXPECT_TRUE(whole.contains(u"first"_s) && whole.contains(u"last"_s));
    EXPECT_EQ(QString::fromUtf8(copied()->data(u"text/markdown"_s)), whole);

    press(window, QKeySequence::SelectAll);
    press(window, QKeySequence::Copy);
    EXPECT_EQ(copied()->formats(),
              (QStringList{u"text/plain"_s, u"text/markdown"_s, u"text/html"_s}));
    EXPECT_EQ(QString::fromUtf8(copied()->data(u"text/markdown"_s)), whole) << "all is selected";
    EXPECT_TRUE(copied()->text().contains(u": first\nbob, "_s)) << copied()->text().toStdString();
    EXPECT_TRUE(copied()->text().endsWith(u": last\n"_s));
    choose(window, {u"Edit"_s, u"Copy Whole Chat"_s});
    EXPECT_EQ(copied()->text(), whole);

    QTest::keyClick(&timeline(window), Qt::Key_Escape);
    window->findChild<QToolBar*>()->actions().first()->trigger();
    EXPECT_EQ(copied()->text(), whole);
}

TEST_F(CommandsTest, StatusBarShowsTheAddressOfALink) {
    Q_EMIT timeline(window).linkHovered(u"http://example.com/"_s);
    EXPECT_EQ(window->findChild<QStatusBar*>()->currentMessage(), u"http://example.com/"_s);
    Q_EMIT timeline(window).linkHovered({});
    EXPECT_EQ(window->findChild<QStatusBar*>()->currentMessage(), QString());
}

}  // namespace
