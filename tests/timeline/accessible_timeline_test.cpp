// SPDX-License-Identifier: MIT
#include "timeline/accessibility/accessible_timeline.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>

#include "foundation/calendar.h"
#include "foundation/url.h"
#include "timeline/fixture.h"
#include "timeline/input/links.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::me;

class AccessibleTimelineTest : public ::testing::Test {
  protected:
    void SetUp() override { setSharedDateFormat("en_GB", foundation::Calendar(QTimeZone::utc())); }

    static std::unique_ptr<TimelineView> makeView(TesselChatLog log, test::Context& context) {
        auto view =
            std::make_unique<TimelineView>(std::make_shared<const TesselChatLog>(std::move(log)),
                                           context.contacts, context.pictures);
        AccessibleTimeline::attach(*view);
        return view;
    }
    static QAccessibleInterface& listOf(TimelineView& view) {
        return *QAccessible::queryAccessibleInterface(&view);
    }

    test::Context context_;
};

TesselChatLog::Link linkEvent(const char* address, const char* title) {
    return {std::make_shared<foundation::URL>(QString::fromUtf8(address)),
            QString::fromUtf8(title)};
}

TEST_F(AccessibleTimelineTest, RowsAreCalledWhatTheySay) {
    const QString nul(1, QChar());
    const auto wrapper = std::make_shared<foundation::FileWrapper>(foundation::Data());
    const struct {
        std::optional<TesselUserID> sender;
        TesselChatLog::Event::Value value;
        QAccessible::Role role;
        QString name;
    } rows[] = {
        {{}, TesselChatLog::NewDay(), QAccessible::Heading, QStringLiteral("8 Mar 2023, 20:26")},
        {{}, TesselChatLog::NewMinute(), QAccessible::Heading, QStringLiteral("20:26")},
        {bob, TesselChatLog::PlainText{QStringLiteral("100 %1 %2")}, QAccessible::ListItem,
         QStringLiteral("bob: 100 %1 %2, 20:26")},
        {{}, TesselChatLog::User(), QAccessible::NoRole, {}},
        {me, TesselChatLog::PlainText{u'a' + nul + u'b'}, QAccessible::ListItem,
         QString::fromUtf8("me: a\uFFFDb, 20:26")},
        {me, linkEvent("http://a.b/c", "title"), QAccessible::Link,
         QStringLiteral("me: title, 20:26")},
        {bob, test::picture(QSize(5, 5)), QAccessible::ListItem,
         QStringLiteral("bob: Picture, 20:26")},
        {{}, TesselChatLog::User(), QAccessible::NoRole, {}},
        {{},
         TesselChatLog::PlainText{QStringLiteral("logged out")},
         QAccessible::ListItem,
         QStringLiteral("logged out, 20:26")},
        {bob, TesselChatLog::File{wrapper}, QAccessible::ListItem,
         QStringLiteral("bob: File: %1, 20:26").arg(wrapper->description())},
        {bob, TesselChatLog::User(), QAccessible::NoRole, {}},
    };
    LogBuilder log;
    for (const auto& row : rows)
        log.add(row.sender, row.value);
    const auto view = makeView(log.log(), context_);  // never shown
    QAccessibleInterface& list = listOf(*view);
    EXPECT_EQ(list.role(), QAccessible::List);
    int child = 0;
    for (const auto& row : rows) {
        if (row.role == QAccessible::NoRole) continue;
        SCOPED_TRACE(qPrintable(row.name));
        QAccessibleInterface* item = list.child(child);
        ASSERT_TRUE(item);
        EXPECT_EQ(item->text(QAccessible::Name), row.name);
        EXPECT_EQ(item->role(), row.role);
        EXPECT_EQ(list.indexOfChild(item), child);
        EXPECT_EQ(item->parent(), &list);
        ++child;
    }
    EXPECT_EQ(list.childCount(), child) << "rows that say nothing new";
    EXPECT_FALSE(list.child(child));
    EXPECT_FALSE(list.child(-1));
}

TEST_F(AccessibleTimelineTest, PlacesOnTheScreenAreThoseOfTheRows) {
    LogBuilder log;
    for (int i = 0; i < 300; ++i)
        log.text(bob, QString::number(i));
    const auto view = makeView(log.log(), context_);
    view->resize(500, 400);
    view->show();
    view->scroller().scrollToRow(100);
    QAccessibleInterface& list = listOf(*view);
    int top = list.child(0)->rect().top();
    for (int i = 0; i < 300; ++i) {
        const QRect rect = list.child(i)->rect();
        EXPECT_EQ(rect.top(), top) << i;
        top = rect.bottom() + 1 + 8;
        EXPECT_EQ(!list.child(i)->state().offscreen, rect.intersects(list.rect())) << i;
    }
    for (const auto& visible : view->timeline().visibleRows()) {
        QAccessibleInterface* item = list.child(static_cast<int>(visible.index));
        const QPoint middle = item->rect().intersected(list.rect()).center();
        EXPECT_EQ(list.childAt(middle.x(), middle.y()), item);
    }
    list.child(250)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(list.rect().contains(list.child(250)->rect()));
}

TEST_F(AccessibleTimelineTest, TextIsReadByCharacterWordAndLine) {
    const QString words = QStringLiteral("one two ").repeated(20) + QString::fromUtf8("e\u0301");
    const auto view =
        makeView(LogBuilder().text(bob, QStringLiteral("before")).text(bob, words).log(), context_);
    view->resize(300, 400);
    view->show();
    QAccessibleInterface* item = listOf(*view).child(1);
    QAccessibleTextInterface* text = item->textInterface();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->text(0, text->characterCount()), words);
    int from = 0, to = 0;
    EXPECT_EQ(text->textAtOffset(5, QAccessible::WordBoundary, &from, &to), QStringLiteral("two"));
    EXPECT_EQ(text->textAtOffset(160, QAccessible::CharBoundary, &from, &to), words.last(2));
    QString lines;
    int count = 0;
    for (to = 0; to < text->characterCount() && count < 99; ++count) {
        const int end = to;
        lines += text->textAtOffset(end, QAccessible::LineBoundary, &from, &to);
        EXPECT_EQ(from, end) << "lines follow each other";
        EXPECT_EQ(text->characterRect(from).top(), text->characterRect(to - 1).top());
    }
    EXPECT_EQ(lines, words);
    EXPECT_GT(count, 2);
    text->textBeforeOffset(from, QAccessible::LineBoundary, &from, &to);
    const QString last = text->textAfterOffset(from, QAccessible::LineBoundary, &from, &to);
    EXPECT_EQ(last, lines.last(to - from));
    EXPECT_EQ(to, text->characterCount());
    for (const int offset : {0, 5, 90}) {
        const QRect place = text->characterRect(offset);
        EXPECT_TRUE(item->rect().contains(place)) << offset;
        EXPECT_EQ(text->offsetAtPoint(place.center()), offset);
    }
    EXPECT_EQ(text->cursorPosition(), -1) << "the keyboard is elsewhere";
    text->setCursorPosition(4);
    QKeyEvent right(QEvent::KeyPress, Qt::Key_Right, Qt::ShiftModifier | Qt::ControlModifier);
    QApplication::sendEvent(view.get(), &right);
    EXPECT_EQ(text->cursorPosition(), 7);
    text->selection(0, &from, &to);
    EXPECT_EQ(std::pair(from, to), std::pair(4, 7));
    EXPECT_EQ(view->selectedText(), QStringLiteral("two"));
    text->removeSelection(0);
    EXPECT_FALSE(view->hasSelection());
}

TEST_F(AccessibleTimelineTest, ItemsAreBoundedAndRecreated) {
    constexpr int count = static_cast<int>(3 * AccessibleTimeline::mostItems);
    LogBuilder log;
    for (int i = 0; i < count; ++i)
        log.text(bob, QString::number(i));
    auto view = makeView(log.log(), context_);
    QAccessibleInterface& list = listOf(*view);
    std::vector<QAccessible::Id> ids;
    for (int i = 0; i < count; ++i)
        ids.push_back(QAccessible::uniqueId(list.child(i)));
    size_t kept = 0;
    for (const QAccessible::Id id : ids)
        kept += QAccessible::accessibleInterface(id) ? 1 : 0;
    EXPECT_EQ(kept, AccessibleTimeline::mostItems);
    EXPECT_EQ(list.child(7)->text(QAccessible::Name), QStringLiteral("bob: 7, 20:26"));
    view.reset();
    for (const QAccessible::Id id : ids)
        EXPECT_FALSE(QAccessible::accessibleInterface(id)) << "an item outlives its view";
}

TEST_F(AccessibleTimelineTest, LinksAndPicturesArePressed) {
    LogBuilder log;
    log.text(bob, QStringLiteral("http://not.a/link"))
        .add(bob, linkEvent("http://a.b/c", "title"))
        .add(bob, test::picture({40, 30}));
    const auto view = makeView(log.log(), context_);
    QList<QUrl> opened;
    QList<qsizetype> pictures;
    QObject::connect(view.get(), &TimelineView::pictureOpened,
                     [&](qsizetype row) { pictures += row; });
    view->links().setOpener([&](const QUrl& url) {
        opened += url;
        return true;
    });
    const QString press = QAccessibleActionInterface::pressAction();
    for (int i = 0; i < 3; ++i) {
        QAccessibleActionInterface* actions = listOf(*view).child(i)->actionInterface();
        EXPECT_EQ(actions->actionNames().contains(press), i > 0);
        actions->doAction(press);
    }
    EXPECT_EQ(opened, QList<QUrl>{QUrl(QStringLiteral("http://a.b/c"))});
    EXPECT_EQ(pictures, QList<qsizetype>{2});
    EXPECT_EQ(listOf(*view).child(1)->text(QAccessible::Description),
              QStringLiteral("http://a.b/c"));
}

}  // namespace
}  // namespace vell
