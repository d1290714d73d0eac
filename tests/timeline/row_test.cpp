// SPDX-License-Identifier: MIT
#include "timeline/rows/timeline_row_view.h"

#include <gtest/gtest.h>

#include <QPainter>

#include "timeline/fixture.h"

namespace vell {
namespace {

using test::bob;
using test::Context;
using test::LogBuilder;
using test::me;
using Event = TesselChatLog::Event;

struct Screen {
    qreal ratio;
    Qt::LayoutDirection direction;
    int points;
    [[nodiscard]] int width() const { return static_cast<int>((points - 32) * ratio); }
};

std::vector<Screen> screens() {
    std::vector<Screen> all;
    for (const qreal ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            for (const int points : {272, 520, 900, 2000})
                all.push_back({ratio, direction, points});
        }
    }
    return all;
}

TesselChatLog everyKind() {
    LogBuilder log;
    log.add({}, TesselChatLog::NewDay()).add({}, TesselChatLog::NewMinute());
    const QString texts[] = {QString(), QStringLiteral("i"), QString(300, u'w'),
                             QStringLiteral("a longer text\nwith two lines ").repeated(12),
                             QStringLiteral("שלום עולם, מה שלומך? ").repeated(9)};
    const auto url = std::make_shared<foundation::URL>(QStringLiteral("http://example.com/"));
    for (const auto& sender : {me, bob}) {
        for (const QString& text : texts) {
            log.text(sender, text);
            log.add(sender, TesselChatLog::Link{url, text});
        }
        for (const QSize pixels :
             {QSize(1, 1), QSize(16, 900), QSize(4000, 3000), QSize(9000, 2)}) {
            log.add(sender, test::picture(pixels));
        }
        log.add(sender, TesselChatLog::User());
    }
    log.add({}, test::picture(QSize(100, 100))).add({}, TesselChatLog::User());
    for (const QString& text : texts)
        log.text({}, text);
    log.add({}, TesselChatLog::File{std::make_shared<foundation::FileWrapper>(foundation::Data())});
    return log.log();
}

bool isBubble(const TimelineRowView& row) {
    return std::holds_alternative<PlainMessageBubbleView>(row.content()) ||
           std::holds_alternative<ImageBubbleView>(row.content());
}

TEST(Row, PartsLieInsideEachOtherAtEveryWidth) {
    const TesselChatLog log = everyKind();
    for (const Screen& screen : screens()) {
        const Context context(screen.ratio, screen.direction);
        const int spacing = context.rows.px(8);
        for (const Event& event : log.events()) {
            SCOPED_TRACE(testing::Message() << "event " << event.sequence << " in " << screen.points
                                            << " at " << screen.ratio);
            const bool own = TimelineRowView::isOwn(event, log);
            const TimelineRowView row(event, own);
            const RowLayout layout = row.measure(context.rows, screen.width());
            const QRect bounds(0, 0, layout.width, layout.height);
            if (std::holds_alternative<std::monostate>(row.content())) {
                EXPECT_EQ(layout.height, 0);
                continue;
            }
            EXPECT_GT(layout.height, 0);
            EXPECT_TRUE(bounds.contains(layout.content) || layout.content.isEmpty());
            if (layout.text) {
                EXPECT_EQ(layout.content.size(),
                          QSize(layout.text->width(), layout.text->height()));
            }
            if (!isBubble(row)) continue;

            EXPECT_TRUE(bounds.contains(layout.frame));
            EXPECT_GE(layout.frame.width(), context.rows.px(45));
            EXPECT_EQ(layout.frame.bottom(), layout.height - 1) << "the tail is not at the bottom";
            EXPECT_EQ(layout.icon.isEmpty(), !event.sender.has_value());
            // Icon, distance, bubble, distance and spacer fill the row from the owner's side.
            const int room = event.sender ? layout.icon.width() + spacing : 0;
            if (own) {
                EXPECT_EQ(layout.frame.right(), layout.width - 1 - room);
                EXPECT_GE(layout.frame.left(), 2 * spacing);
            } else {
                EXPECT_EQ(layout.frame.left(), room);
                EXPECT_LE(layout.frame.right(), layout.width - 1 - 2 * spacing);
            }
            const QMargins inside = QMargins(6, 6, 6, 6) * screen.ratio;
            EXPECT_TRUE(layout.frame.marginsRemoved(inside).contains(layout.content) ||
                        layout.content.isEmpty());
        }
    }
}

TEST(Row, BubbleWidthsHaveTheirBounds) {
    const Context context;
    const auto measured = [&](Event::Value value, int width) {
        const TesselChatLog log = LogBuilder().add(bob, std::move(value)).log();
        return TimelineRowView(log.events()[0], false).measure(context.rows, width);
    };
    const TesselChatLog::PlainText endless{QStringLiteral("word ").repeated(500)};
    EXPECT_GT(measured(endless, 720).frame.width(), 600) << "room unused";
    EXPECT_LE(measured(endless, 2000).frame.width(), 658);
    const TesselChatLog::PlainText letters{QString(500, u'i')};  // fill all of their room
    for (int width = 400, last = 0; width < 1000; width += 1) {
        const int bubble = measured(letters, width).frame.width();
        ASSERT_GE(bubble, last) << "narrower than in a row of " << width - 1;
        last = bubble;
    }
    EXPECT_EQ(measured(test::picture(QSize(30, 20)), 900).content.size(), QSize(30, 20));
    EXPECT_EQ(measured(test::picture(QSize(3000, 300)), 900).content.size(), QSize(600, 60));
    EXPECT_EQ(measured(test::picture(QSize(500, 5000)), 900).content.size(), QSize(48, 480));
    EXPECT_EQ(measured(test::picture(QSize(90000, 1)), 900).content.height(), 1);
}

TEST(Row, OwnMeansServiceAndUserBothAgree) {
    const TesselUserID elsewhere{TesselServiceID::jabber, me.userID};
    const TesselChatLog log =
        LogBuilder().text(me, {}).text(elsewhere, {}).text(bob, {}).text({}, {}).log();
    const bool expected[] = {true, false, false, false};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(TimelineRowView::isOwn(log.events()[i], log), expected[i]) << i;
    }
}

TEST(Row, FontSizeChangesMessagesAndNothingElse) {
    const Context small(1, Qt::LeftToRight, 16);
    const Context large(1, Qt::LeftToRight, 32);
    const TesselChatLog log = LogBuilder()
                                  .text(bob, QStringLiteral("text"))
                                  .text({}, QStringLiteral("system"))
                                  .add({}, TesselChatLog::NewDay())
                                  .add({}, TesselChatLog::NewMinute())
                                  .add(bob, TesselChatLog::User())
                                  .log();
    for (size_t i = 0; i < log.events().size(); ++i) {
        const TimelineRowView row(log.events()[i], false);
        const int before = row.measure(small.rows, 500).content.width();
        const int after = row.measure(large.rows, 500).content.width();
        EXPECT_EQ(after > before * 3 / 2, i < 2) << i;
        EXPECT_EQ(after == before, i >= 2) << i;
    }
    for (const qint64 size :
         {std::numeric_limits<qint64>::min(), qint64(0), std::numeric_limits<qint64>::max()}) {
        const Context context(1, Qt::LeftToRight, size);
        const RowLayout layout = TimelineRowView(log.events()[0], false).measure(context.rows, 500);
        EXPECT_GE(layout.height, 31) << size;
        const int letter = QFontMetrics(context.rows.fonts.message).maxWidth();
        EXPECT_LE(layout.frame.width(), 500 + letter) << size;
    }
}

TEST(Row, TilesShowWhatDirectPaintingShows) {
    const TesselChatLog log = everyKind();
    const TextColors colors{Qt::black, Style::textShadow(Style::Aqua::lime)};
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        Context context(ratio);
        for (const Event& event : log.events()) {
            const TimelineRowView row(event, TimelineRowView::isOwn(event, log));
            const RowLayout layout = row.measure(context.rows, static_cast<int>(500 * ratio));
            if (!layout.text || layout.height > 2000) continue;
            const auto painted = [&](auto paint) {
                QImage image(layout.width, layout.height, QImage::Format_ARGB32_Premultiplied);
                image.fill(Qt::white);
                QPainter painter(&image);
                paint(painter, layout.content.topLeft(), image.rect());
                painter.end();
                return image;
            };
            const QImage direct = painted([&](QPainter& painter, QPoint origin, QRect visible) {
                paintShadowedText(painter, *layout.text, origin, visible, colors, ratio);
            });
            const QImage tiled = painted([&](QPainter& painter, QPoint origin, QRect visible) {
                context.tiles.paint(painter, event.sequence, *layout.text, origin, visible, colors,
                                    ratio);
            });
            EXPECT_TRUE(direct == tiled) << event.sequence;
        }
        EXPECT_LE(context.tiles.byteCount(), TextTiles::defaultBytes);
    }
}

}  // namespace
}  // namespace vell
