// SPDX-License-Identifier: MIT
//
// Many files as one chat, on screen.
#include "app/documents/chat_pane.h"

#include <QClipboard>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QTest>

#include "app/desktop/recent_files.h"
#include "app/desktop/settings.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_text.h"
#include "timeline/timeline_view.h"
#include "windows.h"

using namespace Qt::StringLiterals;
using vell::ChatPane;
using vell::TimelineView;
using vell::test::waitUntil;

namespace {

constexpr int fileCount = 30;
constexpr int messageCount = 40;

class ChatPaneTest : public testing::Test {
  protected:
    ChatPaneTest() {
        QSettings().clear();
        for (int i = 0; i < fileCount; ++i) {
            writers::Transcript chat{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {1}, {}};
            for (int k = 0; k < messageCount; ++k) {
                chat.messages.push_back(
                    {.sender = k % 2,
                     .date = 86400.0 * i + k,
                     .body = {writers::words(u"file %1 message %2"_s.arg(i).arg(k))}});
            }
            paths.push_back(
                QFile::encodeName(folder.filePath(u"chat %1.ichat"_s.arg(i, 2, 10, QChar(u'0')))));
            QFile file(QFile::decodeName(paths.back()));
            if (file.open(QIODevice::WriteOnly)) file.write(writers::keyedTranscript(chat));
        }
        connectPane();
        pane.resize(500, 600);
        pane.addEditCommands(menu);
        pane.addGoCommands(menu);
        pane.addSessionCommands(menu);
        pane.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&pane));
    }
    void connectPane() {
        QObject::connect(&pane, &ChatPane::progressed, &pane,
                         [this](qsizetype done, qsizetype all) { isComplete = done == all; });
        QObject::connect(&pane, &ChatPane::sessionOpened, &pane,
                         [this](const QByteArray& path) { opened = path; });
    }
    void showAll(const std::vector<QByteArray>& files) {
        isComplete = false;
        pane.showSessions(u"Bob"_s, files);
        ASSERT_TRUE(waitUntil([&] { return isComplete && pane.timeline(); }));
        QTest::qWait(50);
    }
    [[nodiscard]] TimelineView& view() const { return *pane.timeline(); }
    /// The texts of the rows on the screen, top down, with their tops.
    [[nodiscard]] std::vector<std::pair<QString, int>> seen() const {
        std::vector<std::pair<QString, int>> rows;
        for (const auto& row : view().timeline().visibleRows()) {
            const auto& event = view().chatlog().events()[static_cast<size_t>(row.index)];
            if (const QString text = vell::rowText(event); text.startsWith(u"file"))
                rows.emplace_back(text, row.top);
        }
        return rows;
    }
    [[nodiscard]] bool isSeen(const QString& text) const {
        const auto rows = seen();
        return std::any_of(rows.begin(), rows.end(),
                           [&](const auto& row) { return row.first == text; });
    }
    /// Which row is marked, and what of it.
    [[nodiscard]] QStringList marked() const {
        QStringList parts;
        for (qsizetype i = 0; i < view().findMatches()->size(); ++i) {
            const auto& match = (*view().findMatches())[i];
            const QString text =
                vell::rowText(view().chatlog().events()[static_cast<size_t>(match.from.row)]);
            parts.append(text + u": "_s +
                         text.mid(match.from.offset, match.to.offset - match.from.offset));
        }
        return parts;
    }
    void trigger(const QString& text) {
        for (QAction* action : menu.actions()) {
            if (action->text().remove(u'&') == text) return action->trigger();
        }
        ADD_FAILURE() << text.toStdString();
    }

    QTemporaryDir folder;
    std::vector<QByteArray> paths;
    vell::Settings settings;
    vell::RecentFiles recentFiles;
    vell::ContactsStore contacts;
    vell::PictureCache pictures;
    QMenu menu;
    ChatPane pane{vell::Services{settings, recentFiles, contacts, pictures}};
    bool isComplete = false;
    QByteArray opened;
};

TEST_F(ChatPaneTest, ShowsTheNewestAndStaysThereWhileOthersCome) {
    showAll({paths.begin(), paths.end() - 2});
    EXPECT_TRUE(isSeen(u"file 27 message 39"_s));
    view().scroller().scrollByPixels(-2000);
    view().select({{view().timeline().visibleRows()[1].index, 0},
                   {view().timeline().visibleRows()[3].index, 4}});
    const auto before = seen();
    const QString selected = view().selectedText();
    const auto rows = view().timeline().rowCount();
    // The first file goes, two come.
    showAll({paths.begin() + 1, paths.end()});
    ASSERT_GT(view().timeline().rowCount(), rows);
    EXPECT_EQ(seen(), before);
    EXPECT_EQ(view().selectedText(), selected);
}

TEST_F(ChatPaneTest, GoesToWhatWasFoundAndToSessions) {
    isComplete = false;
    pane.showSessions(u"Bob"_s, paths);
    pane.goTo(paths[3], 20, {u"message"_s});  // before anything is there
    ASSERT_TRUE(waitUntil([&] { return isComplete && pane.timeline(); }));
    QTest::qWait(50);
    const QString target =
        vell::rowText(view().chatlog().events()[static_cast<size_t>(view().currentRow())]);
    EXPECT_TRUE(target.startsWith(u"file 3 message "_s)) << target.toStdString();
    EXPECT_TRUE(isSeen(target));
    const QStringList marks{target + u": message"_s};
    EXPECT_EQ(marked(), marks);
    showAll({paths.begin() + 1, paths.end()});
    EXPECT_EQ(marked(), marks) << "the row has another number";

    trigger(u"Next Session"_s);
    EXPECT_TRUE(isSeen(u"file 4 message 0"_s));
    const auto top = view().timeline().visibleRows().front();
    ASSERT_TRUE(std::holds_alternative<vell::TesselChatLog::Session>(
        view().chatlog().events()[static_cast<size_t>(top.index)].value));
    const QPoint heading =
        (QPointF(view().timeline().rowLeft(), top.top) + QRectF(top.row->layout.frame).center())
            .toPoint();
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, heading / view().devicePixelRatioF());
    EXPECT_EQ(opened, paths[4]);
    opened.clear();
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(opened, paths[4]);
    trigger(u"Previous Session"_s);
    EXPECT_TRUE(isSeen(u"file 3 message 0"_s));
    trigger(u"Back"_s);
    EXPECT_TRUE(isSeen(u"file 4 message 0"_s));
}

TEST_F(ChatPaneTest, FindsAndCopiesAcrossFiles) {
    showAll({paths.begin(), paths.begin() + 5});
    trigger(u"Find …"_s);
    auto* edit = pane.findChild<QLineEdit*>();
    ASSERT_TRUE(edit && edit->isVisible());
    EXPECT_EQ(pane.focusWidget(), edit);
    QTest::keyClicks(edit, u"message 7"_s);
    ASSERT_TRUE(waitUntil([&] { return isSeen(u"file 0 message 7"_s); }));
    const auto before = seen();
    showAll({paths.begin(), paths.begin() + 8});
    EXPECT_EQ(edit->text(), u"message 7"_s);
    EXPECT_EQ(seen(), before) << "the match is found again where the reader is";
    trigger(u"Copy Whole Chat"_s);
    const QString copied = QGuiApplication::clipboard()->text();
    for (const char* part : {"**chat 00**", "file 0 message 0", "**chat 07**", "file 7 message 39"})
        EXPECT_TRUE(copied.contains(QLatin1String(part))) << part;
}

}  // namespace
