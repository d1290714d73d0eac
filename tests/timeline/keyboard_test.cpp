// SPDX-License-Identifier: MIT
//
// Going through a timeline with the keyboard, and what its rows offer.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMenu>
#include <QMimeData>
#include <QTemporaryDir>

#include "foundation/print.h"
#include "timeline/window.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::me;
using test::Window;

TesselChatLog manyRows() {
    LogBuilder log;
    log.add({}, TesselChatLog::User());  // shows nothing
    for (int i = 1; i < 50; ++i)
        log.text(bob, QStringLiteral("line %1").arg(i));
    log.text(bob, QStringLiteral("high\n").repeated(100));
    log.text(bob, QStringLiteral("last")).add({}, TesselChatLog::User());
    return log.log();
}

bool isWhole(TimelineLayout& timeline, qsizetype row) {
    const qint64 top = timeline.rowTop(row);
    return top >= 0 && top + timeline.row(row).layout.height <= timeline.viewportHeight();
}

TEST(Keyboard, MovesByRowAndThroughTallRows) {
    Window window(manyRows());
    TimelineLayout& timeline = window.view.timeline();
    const qsizetype high = 50;
    const struct {
        const char* what;
        int key;
        qsizetype row;
    } steps[] = {
        {"the first that shows something", Qt::Key_Home, 1},
        {"down", Qt::Key_Down, 2},
        {"up", Qt::Key_Up, 1},
        {"no further", Qt::Key_Up, 1},
        {"the last that shows something", Qt::Key_End, 51},
        {"no further", Qt::Key_Down, 51},
    };
    for (const auto& step : steps) {
        window.key(step.key);
        EXPECT_EQ(window.view.currentRow(), step.row) << step.what;
        EXPECT_TRUE(isWhole(timeline, step.row)) << step.what;
    }
    window.key(Qt::Key_Up);
    EXPECT_EQ(window.view.currentRow(), high);
    const qint64 bottom = timeline.rowTop(high) + timeline.row(high).layout.height;
    EXPECT_LE(bottom, timeline.viewportHeight()) << "its end is where one comes from";
    int steps_ = 0;
    while (window.view.currentRow() == high && steps_ < 200) {
        const qint64 top = timeline.rowTop(high);
        window.key(Qt::Key_Up);
        ++steps_;
        EXPECT_LE(timeline.rowTop(high) - top, timeline.viewportHeight()) << "lines are left out";
    }
    EXPECT_EQ(window.view.currentRow(), high - 1);
    EXPECT_GT(steps_, 10);
}

TEST(Keyboard, PagesOverlapAndStopAtTheEnds) {
    Window window(manyRows());
    TimelineLayout& timeline = window.view.timeline();
    window.key(Qt::Key_Home);
    for (const auto& [forth, back] :
         {std::pair(QKeyCombination(Qt::Key_PageDown), QKeyCombination(Qt::Key_PageUp)),
          std::pair(QKeyCombination(Qt::Key_Space), Qt::SHIFT | Qt::Key_Space)}) {
        const qint64 before = timeline.offset();
        window.key(forth.key(), forth.keyboardModifiers());
        EXPECT_GT(timeline.offset(), before);
        EXPECT_LT(timeline.offset(), before + timeline.viewportHeight());
        window.key(back.key(), back.keyboardModifiers());
        EXPECT_EQ(timeline.offset(), before);
    }
    for (int i = 0; i < 30; ++i) {
        window.key(Qt::Key_PageDown);
        const qsizetype row = window.view.currentRow();
        EXPECT_TRUE(row == 50 || isWhole(timeline, row)) << "half hidden: " << row;
    }
    EXPECT_EQ(timeline.offset() + timeline.viewportHeight(), timeline.contentHeight());
    EXPECT_EQ(window.view.currentRow(), 51);
}

TEST(Keyboard, RingIsShownForTheKeyboardOnly) {
    Window window(
        LogBuilder().text(bob, QStringLiteral("one")).text(me, QStringLiteral("two")).log());
    const auto painted = [&] { return window.view.grab().toImage(); };
    const QImage plain = painted();
    window.key(Qt::Key_Down);
    const QImage first = painted();
    window.key(Qt::Key_Down);
    EXPECT_NE(first, plain);
    EXPECT_NE(painted(), first);
    window.press(QPoint(300, 600));
    window.release(QPoint(300, 600));
    EXPECT_EQ(painted(), plain);
}

TEST(Keyboard, RingIsWholeAtBothEnds) {
    Window window(manyRows());
    TimelineLayout& timeline = window.view.timeline();
    const auto painted = [&] { return window.view.viewport()->grab().toImage(); };
    for (const auto key : {QKeyCombination(Qt::Key_End), Qt::CTRL | Qt::Key_End,
                           QKeyCombination(Qt::Key_Home), Qt::CTRL | Qt::Key_Home}) {
        window.key(key.key(), key.keyboardModifiers());
        const QImage ring = painted();
        window.view.clearFocus();
        const QImage plain = painted();
        window.view.setFocus();
        std::vector<int> edges;  // lines in which much is painted
        for (int y = 0; y < ring.height(); ++y) {
            int changed = 0;
            for (int x = 0; x < ring.width(); ++x)
                changed += ring.pixel(x, y) != plain.pixel(x, y) ? 1 : 0;
            if (changed > 20) edges.push_back(y);
        }
        ASSERT_FALSE(edges.empty());
        const QRect frame = timeline.row(window.view.currentRow()).layout.frame;
        EXPECT_GE(edges.back() - edges.front(), frame.height()) << "the ring is cut";
        const bool isEnd = key.key() == Qt::Key_End;
        EXPECT_EQ(timeline.offset(),
                  isEnd ? timeline.contentHeight() - timeline.viewportHeight() : 0);
    }
}

TEST(Keyboard, RowMenusOfferTheirCommands) {
    foundation::setPrintFunction([](QStringView) {});
    auto attachment = std::make_shared<foundation::FileWrapper>(foundation::Data(QByteArray("x")));
    const auto url = std::make_shared<foundation::URL>(QStringLiteral("http://example.com/%20"));
    Window window(LogBuilder()
                      .text(bob, QStringLiteral("some text"))
                      .add(bob, TesselChatLog::Link{url, QStringLiteral("a page")})
                      .add(bob, test::picture(QSize(30, 30)))
                      .add(bob, TesselChatLog::File{attachment})
                      .log());
    const struct {
        int row;
        int key;
        QStringList commands;
        const char* copiedType;  // by the command before the last
        QString copied;
        const char* savedAs;
    } rows[] = {
        {0, Qt::Key_Menu, {QStringLiteral("Copy")}, nullptr, {}, nullptr},
        {1,
         Qt::Key_Menu,
         {QStringLiteral("Open Link"), QStringLiteral("Copy"), QStringLiteral("Copy Link Address")},
         "text/plain",
         QStringLiteral("a page"),
         nullptr},
        {2,
         Qt::Key_Menu,
         {QStringLiteral("Open Picture"), QStringLiteral("Copy Picture"),
          QStringLiteral("Save Picture As …")},
         "image/vnd.adobe.photoshop",
         QStringLiteral("no decoder looks at this"),
         "Picture.psd"},
        {3,
         Qt::Key_Return,
         {QStringLiteral("Copy"), QStringLiteral("Save File As …")},
         "text/plain",
         QStringLiteral("File: ") + attachment->description(),
         "File"},
    };
    for (const auto& row : rows) {
        window.key(Qt::Key_Home);
        for (int i = 0; i < row.row; ++i)
            window.key(Qt::Key_Down);
        if (row.key == Qt::Key_Menu) {
            QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
            QApplication::sendEvent(&window.view, &event);
        } else {
            window.key(row.key);
        }
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu) << row.row;
        QStringList commands;
        for (const QAction* action : menu->actions())
            commands += action->text().remove(u'&');
        EXPECT_EQ(commands, row.commands) << row.row;
        if (row.copiedType) {
            menu->actions().at(menu->actions().size() - 2)->trigger();
            const QMimeData* data = QGuiApplication::clipboard()->mimeData();
            EXPECT_EQ(QString::fromUtf8(data->data(QLatin1String(row.copiedType))), row.copied);
        }
        if (row.savedAs) {
            const QTemporaryDir folder;
            menu->actions().last()->trigger();
            auto* dialog = window.view.findChild<QFileDialog*>();
            ASSERT_TRUE(dialog);
            EXPECT_EQ(QFileInfo(dialog->selectedFiles().value(0)).fileName(),
                      QString::fromUtf8(row.savedAs));
            dialog->setDirectory(folder.path());
            dialog->selectFile(QString::fromUtf8(row.savedAs));
            QMetaObject::invokeMethod(dialog, "accept");
            QFile saved(folder.filePath(QString::fromUtf8(row.savedAs)));
            ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
            EXPECT_EQ(saved.readAll().left(12), row.row == 2 ? "no decoder l" : "x");
        }
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    foundation::setPrintFunction({});
}

}  // namespace
}  // namespace vell
