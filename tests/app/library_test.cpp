// SPDX-License-Identifier: MIT
//
// The library's window, from the first folder to a message found.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QUrl>

#include "app/desktop/settings.h"
#include "app/library/found_messages.h"
#include "app/library/library_window.h"
#include "library/library_store.h"
#include "timeline/timeline_view.h"
#include "windows.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::openWindow;
using test::waitUntil;

class LibraryTest : public test::Windows {
  protected:
    LibraryTest() {
        QFile::remove(QFile::decodeName(LibraryStore::defaultPath()));
        QDir(folder.path()).mkpath(u"chats"_s);
        write(u"bob.ichat"_s, u"bob"_s, {u"Good morning"_s, u"Is the café open?"_s});
        write(u"bob2.ichat"_s, u"bob"_s, {u"Lunch tomorrow"_s}, 40'000'000);
        write(u"eve.ichat"_s, u"eve"_s, {u"東京へ行きます"_s, u"שלום לך"_s}, 20'000'000);
    }
    ~LibraryTest() override {
        end();
        QFile::remove(QFile::decodeName(LibraryStore::defaultPath()));
    }

    /// Ann's chat with somebody, or with several: "bob+eve".
    void write(const QString& name, const QString& others, const QStringList& texts,
               double begin = 10'000'000) const {
        writers::Transcript chat{.service = u"AIM"_s, .people = {{u"ann"_s}}};
        for (const QString& other : others.split(u'+')) {
            chat.participants.push_back(chat.people.size());
            chat.people.push_back({other});
        }
        for (const QString& text : texts) {
            chat.messages.push_back({.sender = chat.messages.size() % 2,
                                     .date = begin + 60.0 * double(chat.messages.size()),
                                     .body = {writers::words(text)}});
        }
        (void)file(u"chats/"_s + name, writers::keyedTranscript(chat));
    }
    void openLibrary() {
        const QString chats = folder.filePath(u"chats"_s);
        program->addToLibrary({chats, chats, chats + u"/bob.ichat"_s});
        EXPECT_EQ(Settings().libraryFolders(), QStringList(QFileInfo(chats).canonicalFilePath()));
        window = openWindow<LibraryWindow>("libraryWindow");
        ASSERT_TRUE(window);
        ASSERT_TRUE(waitUntil([this] { return texts("libraryPeople").size() > 1; }));
    }
    [[nodiscard]] QAbstractItemView* view(const char* name) const {
        return window->findChild<QAbstractItemView*>(QLatin1String(name));
    }
    /// What the rows of a list say, with those below headings.
    [[nodiscard]] QStringList texts(const char* name) const {
        QStringList result;
        const auto collect = [&](const auto& self, const QModelIndex& parent) -> void {
            const QAbstractItemModel& model = *view(name)->model();
            for (int row = 0; row < model.rowCount(parent); ++row) {
                const QModelIndex index = model.index(row, 0, parent);
                result.append(index.data().toString());
                self(self, index);
            }
        };
        collect(collect, {});
        return result;
    }
    void choose(const char* name, const QString& text) const {
        QAbstractItemView& list = *view(name);
        const auto found =
            list.model()->match(list.model()->index(0, 0), Qt::DisplayRole, text, 1,
                                Qt::MatchStartsWith | Qt::MatchCaseSensitive | Qt::MatchRecursive);
        ASSERT_FALSE(found.isEmpty()) << qPrintable(text);
        list.setCurrentIndex(found.front());
    }
    /// In the menu of the person that is chosen.
    void triggerInMenu(const QString& begin) const {
        QAbstractItemView& people = *view("libraryPeople");
        Q_EMIT people.customContextMenuRequested(people.visualRect(people.currentIndex()).center());
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->text().startsWith(begin)) return action->trigger();
        }
        FAIL() << qPrintable(begin);
    }
    void search(const QString& text) const {
        window->findChild<QLineEdit*>(u"librarySearch"_s)->setText(text);
    }
    [[nodiscard]] QString label(const char* name) const {
        return window->findChild<QLabel*>(QLatin1String(name))->text();
    }
    /// Whether the chat on the right holds the text.
    [[nodiscard]] bool shows(const QString& text) const {
        const auto* timeline = window->findChild<TimelineView*>();
        if (!timeline) return false;
        for (const auto& event : timeline->chatlog().events()) {
            const auto* plain = std::get_if<TesselChatLog::PlainText>(&event.value);
            if (plain && plain->text == text) return true;
        }
        return false;
    }

    LibraryWindow* window = nullptr;
};

TEST_F(LibraryTest, LeadsFromPeopleToMessages) {
    openLibrary();
    EXPECT_EQ(texts("libraryPeople"), (QStringList{u"Everybody"_s, u"bob"_s, u"eve"_s}));
    ASSERT_TRUE(waitUntil([this] { return label("libraryState").startsWith(u'3'); }));
    EXPECT_EQ(label("libraryState"), u"3 conversations · 5 messages"_s);
    choose("libraryPeople", u"bob"_s);
    QStringList rows = texts("libraryConversations");
    rows.replaceInStrings(QRegularExpression(u",.*"_s), {});  // times
    EXPECT_EQ(rows,
              (QStringList{u"2002"_s, u"April"_s, u"Mon 8"_s, u"2001"_s, u"April"_s, u"Thu 26"_s}));
    choose("libraryConversations", u"Thu 26"_s);
    EXPECT_TRUE(waitUntil([this] { return shows(u"Good morning"_s); }));
    QTest::keyClick(view("libraryConversations"), Qt::Key_Return);
    EXPECT_TRUE(waitUntil([this] { return windowOf(folder.filePath(u"chats/bob.ichat"_s)); }));
    write(u"bob3.ichat"_s, u"bob"_s, {u"Supper"_s}, 60'000'000);
    ASSERT_TRUE(waitUntil([this] { return texts("libraryConversations").size() == 8; }));
    EXPECT_TRUE(
        view("libraryConversations")->currentIndex().data().toString().startsWith(u"Thu 26"_s));
}

TEST_F(LibraryTest, FollowsTheFolders) {
    openLibrary();
    choose("libraryPeople", u"eve"_s);
    for (const QString& end : {u""_s, u"-wal"_s, u"-shm"_s})  // somebody empties the cache
        QFile::remove(QFile::decodeName(LibraryStore::defaultPath()) + end);
    write(u"dan.ichat"_s, u"dan"_s, {u"New here"_s}, 50'000'000);
    (void)file(u"chats/bad.ichat"_s, "nothing");
    ASSERT_TRUE(waitUntil([this] { return texts("libraryPeople").contains(u"dan"_s); }));
    EXPECT_EQ(view("libraryPeople")->currentIndex().data(), u"eve"_s) << "the choice stays";
    const auto* broken = window->findChild<QToolButton*>(u"brokenFiles"_s);
    EXPECT_TRUE(waitUntil([&] { return broken->text() == u"1 file couldn’t be read"_s; }));
    window->findChild<QToolButton*>(u"brokenFiles"_s)->click();
    auto* dialog = window->findChild<QDialog*>(u"brokenFilesDialog"_s);
    ASSERT_TRUE(dialog);
    QTest::keyClick(dialog->findChild<QAbstractItemView*>(), Qt::Key_Return);
    EXPECT_TRUE(waitUntil([] { return openWindow("loadLogWindow"); }));
    QDir(folder.filePath(u"chats"_s)).mkpath(u"deeper/still"_s);
    QTest::qWait(800);  // to be looked at while it is empty
    write(u"deeper/still/zoe.ichat"_s, u"zoe"_s, {u"Hidden"_s});
    EXPECT_TRUE(waitUntil([this] { return texts("libraryPeople").contains(u"zoe"_s); }));
    QFile::remove(folder.filePath(u"chats/eve.ichat"_s));
    EXPECT_TRUE(waitUntil([this] { return !texts("libraryPeople").contains(u"eve"_s); }));
    EXPECT_EQ(view("libraryPeople")->currentIndex().data(), u"Everybody"_s);
}

TEST_F(LibraryTest, TakesFoldersWhileOthersAreIndexed) {
    for (const QString& name : {u"kim"_s, u"lea"_s}) {
        QDir(folder.path()).mkpath(name);
        write(u"../%1/chat.ichat"_s.arg(name), name, {u"Hello"_s});
        program->addToLibrary({folder.filePath(name)});
    }
    window = openWindow<LibraryWindow>("libraryWindow");
    const QStringList both{u"Everybody"_s, u"kim"_s, u"lea"_s};
    EXPECT_TRUE(waitUntil([&] { return texts("libraryPeople") == both; }));
}

TEST_F(LibraryTest, SearchesAsOneTypes) {
    QFile::copy(folder.filePath(u"chats/bob.ichat"_s), folder.filePath(u"chats/copy.ichat"_s));
    write(u"dan.ichat"_s, u"dan"_s, {u"Yes\nTwo lunches, lunches!"_s});
    openLibrary();
    struct Row {
        QString query;
        QStringList found;
    };
    const Row rows[] = {{u"CAFE"_s, {u"Is the café open?"_s}},
                        {u"東京"_s, {u"東京へ行きます"_s}},
                        {u"שלום"_s, {u"שלום לך"_s}},
                        {u"from:bob"_s, {u"Is the café open?"_s}},
                        {u"with:bob mor"_s, {u"Good morning"_s}},
                        {u"o"_s, {u"Is the café open?"_s}},
                        {u"in:1999 o"_s, {}}};
    for (const Row& row : rows) {
        search(row.query);
        EXPECT_TRUE(waitUntil([&] {
            return texts("libraryFound") == row.found &&
                   !label("librarySearchState").startsWith(u"Searching"_s);
        })) << qPrintable(row.query)
            << qPrintable(texts("libraryFound").join(u'|'));
    }
    search(u"lunches"_s);
    ASSERT_TRUE(waitUntil([this] { return texts("libraryFound").size() == 1; }));
    const auto& found = static_cast<const FoundMessages&>(*view("libraryFound")->model());
    const FoundMessages::Row& row = found.row(found.index(0, 0));
    ASSERT_EQ(row.stretches.size(), 2U);
    EXPECT_EQ(row.line.mid(row.stretches[1].position, row.stretches[1].length), u"lunches"_s);
    search(u"in:nonsense"_s);
    EXPECT_TRUE(label("librarySearchState").startsWith(u"Dates are written"_s));
    EXPECT_TRUE(view("libraryFound")->isVisible());
    search({});
    EXPECT_FALSE(view("libraryFound")->isVisible());
}

TEST_F(LibraryTest, GoesToWhatWasFound) {
    openLibrary();
    auto* field = window->findChild<QLineEdit*>(u"librarySearch"_s);
    field->setFocus();
    QTest::keyClicks(field, u"tomorr"_s);
    ASSERT_TRUE(waitUntil([this] { return texts("libraryFound").size() == 1; }));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(waitUntil([this] { return shows(u"Lunch tomorrow"_s); }));
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(field->text().isEmpty());
    EXPECT_TRUE(view("libraryConversations")->isVisible());
}

TEST_F(LibraryTest, JoinsPeopleByDragging) {
    write(u"jun.ichat"_s, u"jun"_s, {u"Hello"_s}, 15'000'000);
    write(u"group.ichat"_s, u"bob+zoe"_s, {u"Hello"_s}, 9'000'000);
    openLibrary();
    ASSERT_TRUE(waitUntil([this] { return texts("libraryPeople").size() == 5; }));
    QAbstractItemModel& model = *view("libraryPeople")->model();
    const QModelIndex bob = model.index(1, 0);
    const QModelIndex eve = model.index(2, 0);
    const std::unique_ptr<QMimeData> data(model.mimeData({eve}));
    EXPECT_FALSE(model.canDropMimeData(data.get(), Qt::LinkAction, -1, -1, eve)) << "onto itself";
    EXPECT_FALSE(model.canDropMimeData(data.get(), Qt::LinkAction, -1, -1, model.index(0, 0)));
    EXPECT_FALSE(model.canDropMimeData(data.get(), Qt::LinkAction, -1, -1, model.index(4, 0)))
        << "a group is no person";
    const std::unique_ptr<QMimeData> jun(model.mimeData({model.index(3, 0)}));
    model.dropMimeData(data.get(), Qt::LinkAction, -1, -1, bob);
    const QString group = u"bob, zoe"_s;
    EXPECT_TRUE(waitUntil([&] {
        return texts("libraryPeople") == QStringList{u"Everybody"_s, u"bob"_s, u"jun"_s, group};
    }));
    model.dropMimeData(jun.get(), Qt::LinkAction, -1, -1, model.index(1, 0));
    const QStringList joined{u"Everybody"_s, u"bob"_s, group};
    ASSERT_TRUE(waitUntil([&] { return texts("libraryPeople") == joined; }));
    search(u"from:eve"_s);
    EXPECT_TRUE(waitUntil([this] { return texts("libraryFound").size() == 2; }))
        << "bob's messages are eve's";
    end();
    start();
    openLibrary();
    EXPECT_EQ(texts("libraryPeople"), joined) << "in the next session, too";
    choose("libraryPeople", u"bob"_s);
    triggerInMenu(u"&Separate"_s);
    const QStringList apart{u"Everybody"_s, u"bob"_s, u"eve"_s, u"jun"_s, group};
    EXPECT_TRUE(waitUntil([&] { return texts("libraryPeople") == apart; }));
}

TEST_F(LibraryTest, JoinsAnybodyOfMany) {
    for (int i = 0; i < 20; ++i)
        write(u"%1.ichat"_s.arg(i), u"friend%1"_s.arg(i), {u"Hello"_s}, 30'000'000 + i * 1e5);
    openLibrary();
    ASSERT_TRUE(waitUntil([this] { return texts("libraryPeople").size() == 23; }));
    choose("libraryPeople", u"eve"_s);
    triggerInMenu(u"&Somebody"_s);
    auto* dialog = window->findChild<QDialog*>(u"joinDialog"_s);
    ASSERT_TRUE(dialog);
    const QAbstractItemModel& model = *dialog->findChild<QAbstractItemView*>()->model();
    EXPECT_EQ(model.rowCount(), 21) << "neither everybody nor eve herself";
    QTest::keyClicks(dialog->findChild<QLineEdit*>(), u"friend1"_s);
    EXPECT_EQ(model.rowCount(), 11);
    QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Down);
    QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
    EXPECT_TRUE(waitUntil([this] { return !texts("libraryPeople").contains(u"eve"_s); }));
    EXPECT_EQ(texts("libraryPeople").size(), 22);
    EXPECT_EQ(view("libraryPeople")->currentIndex().data(), u"friend10"_s) << "who is eve, too";
}

TEST_F(LibraryTest, WorksWithoutAnIndex) {
    struct Row {
        const char* fault;
        QByteArray content;
        QString notice;
    };
    const Row rows[] = {
        {"damaged", QByteArray(8192, 'x'), u"was damaged"_s},
        {"somebody else's", {}, u"can’t be used"_s},
    };
    const QString path = QFile::decodeName(LibraryStore::defaultPath());
    for (const Row& row : rows) {
        QDir().mkpath(path.left(path.lastIndexOf(u'/')));
        if (row.content.isEmpty()) {
            QFile::remove(path);
            Database other(QFile::encodeName(path));
            other.run("CREATE TABLE theirs (x); PRAGMA application_id = 7");
        } else {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(row.content);
        }
        program->addToLibrary({folder.filePath(u"chats"_s)});
        window = openWindow<LibraryWindow>("libraryWindow");
        EXPECT_TRUE(waitUntil([&] { return label("libraryState").contains(row.notice); }))
            << row.fault << qPrintable(label("libraryState"));
        opened(folder.filePath(u"chats/bob.ichat"_s));
        end();
        QSettings().clear();
        start();
    }
}

TEST_F(LibraryTest, FoldersAreDroppedOnWelcome) {
    program->openWithoutFiles();
    auto* welcome = openWindow("welcomeWindow");
    ASSERT_TRUE(welcome);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(folder.filePath(u"chats"_s))});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(welcome, &enter);
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(welcome, &drop);
    ASSERT_TRUE(waitUntil([] { return openWindow("libraryWindow"); }));
    EXPECT_TRUE(program->hasLibrary());
    EXPECT_FALSE(openWindow("findFilesWindow"));
}

}  // namespace
}  // namespace vell
