// SPDX-License-Identifier: MIT
#include "timeline/timeline_view.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPainter>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QWheelEvent>

#include "identity/memory_contacts.h"
#include "identity/waiting.h"
#include "timeline/pictures/scaled_pictures.h"
#include "timeline/random_log.h"
#include "timeline/window.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::waitFor;

void turnWheel(TimelineView& view, int notches) {
    const QPointF place(100, 100);
    QWheelEvent event(place, view.viewport()->mapToGlobal(place), QPoint(),
                      QPoint(0, 120 * notches), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

TEST(TimelineView, ContactsThatComeLaterChangeCaptionsAndNoBubble) {
    QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings")), QSettings::IniFormat);
    auto owned = std::make_unique<test::MemoryContacts>();
    test::MemoryContacts& source = *owned;
    source.isFree = true;
    ContactsStore contacts(std::move(owned), settings);
    waitFor([&] { return source.enumerations == 1; });
    PictureCache pictures;
    LogBuilder log;
    for (int i = 0; i < 100; ++i)
        log.text(bob, QStringLiteral("some words")).add(bob, TesselChatLog::User());
    TimelineView view(std::make_shared<const TesselChatLog>(log.log()), contacts, pictures);
    view.resize(500, 600);
    view.show();
    while (view.timeline().makeExact(QDeadlineTimer(20))) {
    }
    view.scroller().scrollToRow(51);
    view.timeline().scrollBy(7);
    const auto before = view.timeline().visibleRows();
    std::vector<std::shared_ptr<LaidOutText>> texts;
    for (const auto& row : before)
        texts.push_back(row.row->layout.text);
    const qint64 height = view.timeline().contentHeight();

    ContactRecord record;
    record.identifier = QStringLiteral("1");
    record.name = QStringLiteral("Bob from over there");
    record.instantMessageAddresses = {{bob.userID, {}}};
    QImage picture(40, 40, QImage::Format_RGB32);
    picture.fill(Qt::red);
    for (int x = 0; x < 30; x += 2) {  // stripes as narrow as they can be
        for (int y = 0; y < 10; ++y)
            picture.setPixelColor(x, y, Qt::white);
    }
    QBuffer buffer;
    picture.save(&buffer, "png");
    record.thumbnails = {buffer.data()};
    source.contacts = {record};
    Q_EMIT source.contactsChanged();
    ASSERT_TRUE(waitFor([&] { return contacts.addressToContact().contains(bob.userID); }));

    const auto& after = view.timeline().visibleRows();
    ASSERT_EQ(after.size(), before.size());
    for (size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].top, before[i].top) << i;
        const bool isCaption = after[i].index % 2 == 1;
        EXPECT_EQ(after[i].row->layout.text == texts[i], !isCaption) << "laid out anew: " << i;
        if (isCaption) {
            EXPECT_TRUE(after[i].row->layout.text->text() == *record.name) << i;
        }
    }
    EXPECT_EQ(view.timeline().contentHeight(), height);
    const auto& bubble = after[after[1].index % 2 == 0 ? 1 : 2];
    const QPoint icon =
        bubble.row->layout.icon.center() + QPoint(view.timeline().rowLeft(), bubble.top);
    EXPECT_EQ(view.viewport()->grab().toImage().pixelColor(icon), QColor(Qt::red));

    // At a ratio that the stored picture isn't made for it is scaled well, which takes time, once.
    constexpr qreal ratio = 1.25;
    test::Context other(ratio);
    const RowContext context{other.rows.fonts,  other.rows.colors, ratio,
                             Qt::LeftToRight,   contacts,          other.colors,
                             other.backgrounds, other.tiles,       other.pictures};
    const QSize size = SenderIconView::size(context);
    QImage painted(size, QImage::Format_ARGB32_Premultiplied);
    painted.fill(Qt::white);
    QPainter painter(&painted);
    SenderIconView{bob}.paint(painter, painted.rect(), context);
    painter.end();
    const QImage kept = *contacts.addressToContact()[bob.userID].image;
    EXPECT_EQ(painted, kept.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                           .convertToFormat(painted.format()));
    EXPECT_EQ(ScaledPictures::shared().image(kept, size).cacheKey(),
              ScaledPictures::shared().image(kept, size).cacheKey());
}

TEST(SmoothScroll, SlowsDownAndEndsOnThePixel) {
    for (const double distance : {120.0, -120.0, 1.0, -3.0, 5000.0}) {
        SmoothScroll scroll;
        scroll.add(distance);
        qint64 sum = 0;
        qint64 last = static_cast<qint64>(std::abs(distance));
        int steps = 0;
        for (; scroll.isMoving() && steps < 1000; ++steps) {
            const qint64 step = scroll.step(8);
            EXPECT_LE(std::abs(step), last) << "faster again";
            last = std::abs(step);
            sum += step;
        }
        EXPECT_EQ(sum, static_cast<qint64>(distance));
        EXPECT_GE(steps, std::min(10, static_cast<int>(std::abs(distance))));
    }
    SmoothScroll turned;
    turned.add(500);
    turned.add(-20);
    EXPECT_LE(turned.step(8), 0) << "the old way first";
}

TEST(TimelineView, WheelGoesAllTheWaySmoothlyAndTheBarFollows) {
    test::Window window(test::randomLog(2000, 4));
    TimelineView& view = window.view;
    view.scroller().scrollToRow(900);
    const qsizetype row = view.scroller().topRow();
    const qint64 start = view.timeline().rowTop(row);
    std::vector<qint64> places{start};
    turnWheel(view, -2);
    const qint64 goal = start - 2 * QApplication::wheelScrollLines() * 20;
    ASSERT_TRUE(waitFor([&] {
        const qint64 place = view.timeline().rowTop(row);
        if (place != places.back()) places.push_back(place);
        return place <= goal;
    }));
    EXPECT_EQ(places.back(), goal) << "too far";
    EXPECT_TRUE(std::is_sorted(places.rbegin(), places.rend())) << "back and forth";
    const QScrollBar& bar = *view.verticalScrollBar();
    EXPECT_EQ(bar.value(), view.timeline().offset());
    EXPECT_EQ(bar.maximum(), view.timeline().contentHeight() - view.timeline().viewportHeight());
}

TEST(TimelineView, IdlePassWaitsForScrollingToEndAndMovesNothing) {
    test::Window window(test::randomLog(3000, 6));
    TimelineView& view = window.view;
    view.scroller().scrollToRow(1500);
    const auto exact = [&] {
        qsizetype count = 0;
        for (qsizetype i = 0; i < view.timeline().rowCount(); ++i)
            count += view.timeline().isExact(i) ? 1 : 0;
        return count;
    };
    // Scrolling a pixel now and then makes the rows exact that come on the screen, and no others.
    const qsizetype before = exact();
    QElapsedTimer sinceScrolling;
    qint64 longestPause = 0;
    for (int i = 0; i < 40; ++i) {
        sinceScrolling.start();
        view.scroller().scrollByPixels(i % 2 == 0 ? 1 : -1);
        QTest::qWait(10);
        longestPause = std::max(longestPause, sinceScrolling.elapsed());
    }
    if (longestPause < 150) {
        EXPECT_LT(exact(), before + 100);
    }
    const auto top = view.timeline().visibleRows().front();
    ASSERT_TRUE(waitFor([&] { return exact() == view.timeline().rowCount(); }, 60000));
    EXPECT_EQ(view.timeline().visibleRows().front().index, top.index);
    EXPECT_EQ(view.timeline().visibleRows().front().top, top.top);
}

TEST(TimelineView, NoPixelIsLeftUnpainted) {
    LogBuilder log;
    log.text(bob, QStringLiteral("above"));
    log.text(test::me, QStringLiteral("a bubble higher than the window\n").repeated(400));
    log.text(bob, QStringLiteral("below"));
    test::Window window(log.log());
    window.view.timeline().row(1);
    for (const double place : {0.0, 0.4, 1.0}) {
        QScrollBar& bar = *window.view.verticalScrollBar();
        bar.setValue(static_cast<int>(place * bar.maximum()));
        QWidget& viewport = *window.view.viewport();
        QImage image(viewport.size(), QImage::Format_RGB32);
        image.fill(Qt::magenta);
        viewport.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        int left = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                left += image.pixelColor(x, y) == QColor(Qt::magenta) ? 1 : 0;
        }
        EXPECT_EQ(left, 0) << place;
    }
}

TEST(TimelineView, PlaceAskedForBeforeTheFirstShowIsKept) {
    test::Context context;
    LogBuilder log;
    for (int i = 0; i < 500; ++i)
        log.text(bob, QStringLiteral("word ").repeated(i % 40));
    TimelineView view(std::make_shared<const TesselChatLog>(log.log()), context.contacts,
                      context.pictures);
    view.scroller().scrollToRow(20, 5);
    view.scroller().revealText({{300, 0}, {300, 1}});  // the last wish counts, and all of it
    EXPECT_EQ(view.scroller().topRow(), 300);
    EXPECT_EQ(view.scroller().pointsAbove(), 0);
    view.resize(500, 500);
    view.show();
    EXPECT_EQ(view.timeline().rowTop(300), 0);
    view.scroller().scrollToRow(300, 6);
    EXPECT_EQ(view.scroller().pointsAbove(), 6);
    view.resize(420, 700);
    view.setFontSize(30);
    EXPECT_EQ(view.scroller().topRow(), 300);
}

}  // namespace
}  // namespace vell
