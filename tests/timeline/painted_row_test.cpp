// SPDX-License-Identifier: MIT
//
// What is seen of rows: each is painted and looked at in comparison with parts of it.
#include <gtest/gtest.h>

#include <QPainter>
#include <cmath>

#include "timeline/fixture.h"
#include "timeline/rows/timeline_row_view.h"
#include "timeline/window.h"

namespace vell {
namespace {

using Direction = ChatBubbleShape::Direction;
using test::bob;
using test::eve;
using test::LogBuilder;
using test::me;

constexpr int rowWidth = 400;
const QColor paperColor(250, 250, 245);

/// One event's row on paper.
struct Painted {
    Painted(std::optional<TesselUserID> sender, TesselChatLog::Event::Value value)
        : log(LogBuilder().add(std::move(sender), std::move(value)).log()),
          view(log.events()[0], TimelineRowView::isOwn(log.events()[0], log)) {
        context.rows.colors.background = paperColor;
        context.colors.styleForUser(bob, false);  // lime, so that eve is the first in a dark colour
        layout = view.measure(context.rows, rowWidth);
        image = onPaper([&](QPainter& painter) {
            view.paint(painter, layout, context.rows,
                       {1, QRect(0, 0, rowWidth, layout.height), {}});
        });
    }

    template <class Paint>
    QImage onPaper(Paint paint) const {
        QImage picture(rowWidth, layout.height, QImage::Format_ARGB32_Premultiplied);
        picture.fill(paperColor);
        QPainter painter(&picture);
        paint(painter);
        return picture;
    }
    QImage bubbleOnly(Style::Aqua aqua, Direction tail) {
        return onPaper([&](QPainter& painter) {
            context.backgrounds.paint(painter, layout.frame, aqua, tail, 1.0,
                                      QRect(0, 0, rowWidth, layout.height));
        });
    }
    /// The columns of a picture in which it isn't paper, as [left, right].
    [[nodiscard]] std::pair<int, int> inkColumns() const {
        std::pair<int, int> columns(rowWidth, -1);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < rowWidth; ++x) {
                if (image.pixelColor(x, y) == paperColor) continue;
                columns = {std::min(columns.first, x), std::max(columns.second, x)};
            }
        }
        return columns;
    }

    test::Context context;
    TesselChatLog log;
    TimelineRowView view;
    RowLayout layout;
    QImage image;
};

TesselChatLog::Link link(const QString& title) {
    return {std::make_shared<foundation::URL>(QStringLiteral("http://a.b/c")), title};
}

TEST(PaintedRow, BubblesHaveTheColourTailTextAndPictureOfTheirSender) {
    const QString words = QStringLiteral("nun nun nun\nsee");
    const struct {
        const char* what;
        std::optional<TesselUserID> sender;
        Style::Aqua aqua;
        Direction tail;
    } rows[] = {
        {"own", me, Style::Aqua::blueberry, Direction::right},
        {"other", bob, Style::Aqua::lime, Direction::left},
        {"dark", eve, Style::Aqua::grape, Direction::left},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Painted plain(row.sender, TesselChatLog::PlainText{words});
        Painted linked(row.sender, link(words));
        const RowLayout& layout = plain.layout;
        const QImage bubble = plain.bubbleOnly(row.aqua, row.tail);
        const QRect text = layout.content.adjusted(0, -1, 0, 1);
        const QRect beside = layout.frame.adjusted(0, 0, 1 - layout.frame.width() + 14, 0);
        EXPECT_EQ(plain.image.copy(beside), bubble.copy(beside));
        EXPECT_EQ(plain.image.copy(beside.translated(layout.frame.width() - beside.width(), 0)),
                  bubble.copy(beside.translated(layout.frame.width() - beside.width(), 0)));

        // Letters differ from the bubble to one side of lightness, their shadow to the other.
        int darkest = 0, lightest = 0, underline = 0;
        for (int y = text.top(); y <= text.bottom(); ++y) {
            int changed = 0;
            for (int x = text.left(); x <= text.right(); ++x) {
                const int change = qGray(plain.image.pixel(x, y)) - qGray(bubble.pixel(x, y));
                darkest = std::min(darkest, change);
                lightest = std::max(lightest, change);
                changed += linked.image.pixel(x, y) != bubble.pixel(x, y) ? 1 : 0;
            }
            underline = std::max(underline, changed);
        }
        const bool isDark = row.aqua == Style::Aqua::grape;
        EXPECT_GT(isDark ? lightest : -darkest, 80) << "text as light as its bubble";
        EXPECT_GT(isDark ? -darkest : lightest, 5) << "no shadow";
        EXPECT_GE(underline, text.width() - 2) << "the link isn't underlined";

        ASSERT_FALSE(layout.icon.isEmpty());
        const QImage icon = plain.image.copy(layout.icon);
        EXPECT_NE(icon, plain.onPaper([](QPainter&) {}).copy(layout.icon)) << "no picture";
        EXPECT_EQ(layout.content.left() - layout.frame.left(), 18);
        EXPECT_EQ(layout.content.top() - layout.frame.top(), 10);
        EXPECT_EQ(layout.frame.bottom() - layout.content.bottom(), 10);
        const Painted line(row.sender, TesselChatLog::PlainText{QStringLiteral("one")});
        EXPECT_EQ(layout.content.height(), 2 * line.layout.content.height() + 8);
    }
}

double luminance(QRgb color) {
    const auto linear = [](int channel) {
        return channel <= 10 ? channel / 255.0 / 12.92
                             : std::pow((channel / 255.0 + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
           0.0722 * linear(qBlue(color));
}

TEST(PaintedRow, HighlightedTextIsLegibleOnEveryBubble) {
    Painted row(bob, TesselChatLog::PlainText{QStringLiteral("some words\non two lines")});
    const RowLayout& layout = row.layout;
    // The selection's colour in light and dark palettes, and the lightest that one could have.
    for (const QColor& accent : {QColor(48, 140, 198), QColor(142, 140, 216), QColor(Qt::yellow)}) {
        row.context.rows.colors.highlight = accent;
        for (int aqua = 0; aqua < Style::aquaCount; ++aqua) {
            const auto style = static_cast<Style::Aqua>(aqua);
            const QColor letters = Style::textColor(style);
            for (const auto kind :
                 {HighlightKind::match, HighlightKind::currentMatch, HighlightKind::selection}) {
                const TextHighlight highlight{{0, TextHighlight::textEnd}, kind};
                const QRect all(0, 0, rowWidth, layout.height);
                const QImage image = row.onPaper([&](QPainter& painter) {
                    row.context.backgrounds.paint(painter, layout.frame, style, Direction::left, 1,
                                                  all);
                    paintHighlights(painter, layout, letters, row.context.rows,
                                    {1, all, {&highlight, 1}});
                });
                double least = 99;
                for (const QRect& line : layout.text->region({0, 999}, 0, layout.height)) {
                    for (const int y : {line.top() + 3, line.bottom() - 3}) {
                        const QPoint place(line.center().x(), y);
                        const QRgb behind = image.pixel(layout.content.topLeft() + place);
                        const double ours = luminance(letters.rgb()) + 0.05;
                        const double theirs = luminance(behind) + 0.05;
                        least = std::min(least, std::max(ours / theirs, theirs / ours));
                    }
                }
                EXPECT_GE(least, 4.5)
                    << aqua << " " << static_cast<int>(kind) << " " << accent.name().toStdString();
            }
        }
    }
}

TEST(PaintedRow, PicturesStandOffFromTheTail) {
    const test::Context context;
    for (const bool own : {true, false}) {
        const TesselChatLog log = LogBuilder().add(bob, test::picture(QSize(90, 60))).log();
        const RowLayout row = TimelineRowView(log.events()[0], own).measure(context.rows, rowWidth);
        const int left = row.content.left() - row.frame.left();
        const int right = row.frame.right() - row.content.right();
        EXPECT_EQ(std::pair(left, right), own ? std::pair(6, 10) : std::pair(10, 6));
        EXPECT_EQ(row.content.top() - row.frame.top(), 6);
    }
}

TEST(PaintedRow, LinesStandInTheMiddleAndCaptionsOnTheirSide) {
    const TesselChatLog::PlainText said{QStringLiteral("Bob has left")};
    const Painted system({}, said);
    EXPECT_TRUE(std::holds_alternative<SystemMessageView>(system.view.content()));
    EXPECT_TRUE(std::holds_alternative<PlainMessageBubbleView>(Painted(bob, said).view.content()));
    const Painted minute({}, TesselChatLog::NewMinute());
    for (const Painted* row : {&system, &minute}) {
        const auto [left, right] = row->inkColumns();
        EXPECT_NEAR(left + right, rowWidth - 1, 6);
        EXPECT_GT(left, 20);
        EXPECT_EQ(row->image.pixelColor(row->layout.content.topLeft() - QPoint(3, 0)), paperColor);
    }
    EXPECT_LT(Painted(bob, TesselChatLog::User()).inkColumns().second, rowWidth / 2);
    EXPECT_GT(Painted(me, TesselChatLog::User()).inkColumns().first, rowWidth / 2);

    const Painted day({}, TesselChatLog::NewDay());
    const int middle = (day.layout.height - 1) / 2;
    EXPECT_NE(day.image.pixelColor(3, middle), paperColor) << "no line";
    EXPECT_NE(day.image.pixelColor(rowWidth - 3, middle), paperColor) << "no line";
    for (const int distance : {3, 7}) {
        EXPECT_EQ(day.image.pixelColor(day.layout.content.left() - distance, middle), paperColor);
        EXPECT_EQ(day.image.pixelColor(day.layout.content.right() + distance, middle), paperColor);
    }
    EXPECT_NE(day.image.pixelColor(day.layout.content.left() - 10, middle), paperColor)
        << "gap too wide";
}

TEST(PaintedRow, SendersGetColoursAtOnceInTheOrderOfTheirFirstAppearance) {
    const auto user = [](const char* name) {
        return TesselUserID{TesselServiceID::aim, QString::fromUtf8(name)};
    };
    const auto said = [](const std::vector<TesselUserID>& senders) {
        LogBuilder log;
        for (const TesselUserID& sender : senders) {
            for (int i = 0; i < 100; ++i)
                log.text(sender, QStringLiteral("words"));
        }
        return log.log();
    };
    BubbleColors& colors = BubbleColors::shared();
    const auto first = static_cast<size_t>(colors.styleIdx());
    test::Window one(said({me, user("x1"), user("x2"), user("x1"), user("x3")}));
    one.view.scroller().scrollToRow(499);  // the last sender is painted first
    one.view.grab();
    test::Window two(said({user("x4"), user("x2"), user("x5")}));
    size_t place = first;
    for (const char* name : {"x1", "x2", "x3", "x4", "x5"}) {
        EXPECT_EQ(colors.colorMap().value(user(name), Style::Aqua::blueberry),
                  BubbleColors::styleList[place++ % 6])
            << name;
    }
    EXPECT_FALSE(colors.colorMap().contains(me));
    // With the list through, it starts again; who is known keeps the colour.
    BubbleColors fresh;
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(fresh.styleForUser(user(qPrintable(QString::number(i))), false),
                  BubbleColors::styleList[static_cast<size_t>(i)]);
    EXPECT_EQ(fresh.styleForUser(user("6"), false), Style::Aqua::lime);
    EXPECT_EQ(fresh.styleForUser(user("1"), false), Style::Aqua::grape);
    const TesselUserID elsewhere{TesselServiceID::jabber, QStringLiteral("2")};
    EXPECT_EQ(fresh.styleForUser(elsewhere, false), Style::Aqua::grape) << "the service is ignored";
    EXPECT_EQ(fresh.styleForUser({}, false), Style::Aqua::graphite);
}

}  // namespace
}  // namespace vell
