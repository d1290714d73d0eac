// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QPainter>

#include "timeline/bubbles/background_cache.h"

namespace vell {
namespace {

using Direction = ChatBubbleShape::Direction;

QImage paper(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(30, 40, 50));
    return image;
}

// One picture of the whole bubble from masks of its own size, without any slicing or stretching.
QImage direct(const QRect& rect, QSize canvas, Style::Aqua aqua, Direction direction, qreal ratio) {
    const FancyBackground background{ChatBubbleShape(direction), Style::colors(aqua)};
    const BackgroundMasks masks =
        makeBackgroundMasks(background.shape, background.inset, rect.size(), ratio);
    const int margin = backgroundMargin(ratio);
    const QImage picture =
        composeBackground(masks, background, rect.height(), 0, rect.height() + 2 * margin, ratio);
    QImage image = paper(canvas);
    QPainter painter(&image);
    painter.drawImage(rect.topLeft() - QPoint(margin, margin), picture);
    return image;
}

TEST(BubbleBackground, SlicedLooksLikeDirect) {
    struct Case {
        const char* fault;
        QSizeF points;
        Direction direction;
        Style::Aqua aqua;
    };
    const Case cases[] = {
        {"a cap too short for the blur", {380, 44}, Direction::right, Style::Aqua::blueberry},
        {"the tail's cap taken for the other", {380, 44}, Direction::left, Style::Aqua::lime},
        {"masks stretched down, gradients not", {300, 400}, Direction::left, Style::Aqua::indigo},
        {"too narrow to be cut", {60, 300}, Direction::right, Style::Aqua::ruby},
        {"just as long as the caps", {89, 89}, Direction::left, Style::Aqua::graphite},
        {"one point beyond the caps", {90, 90}, Direction::right, Style::Aqua::bondi},
        {"the smallest", {45, 31}, Direction::left, Style::Aqua::grape},
        {"taller than what is kept", {100, 1030}, Direction::left, Style::Aqua::tangerine},
    };
    for (const qreal ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        BackgroundCache cache;
        for (const Case& row : cases) {
            SCOPED_TRACE(testing::Message() << row.fault << " at ratio " << ratio);
            const QRect rect(QPoint(20, 20), (row.points * ratio).toSize());
            const QSize canvas = rect.size() + QSize(40, 40);
            const QImage expected = direct(rect, canvas, row.aqua, row.direction, ratio);
            for (int pass = 0; pass < 2; ++pass) {  // made, then from the cache
                QImage image = paper(canvas);
                QPainter painter(&image);
                cache.paint(painter, rect, row.aqua, row.direction, ratio, image.rect());
                painter.end();
                EXPECT_TRUE(image == expected);
            }
        }
    }
}

TEST(BubbleBackground, TallOneIsPaintedInBandsAndNotKept) {
    const QRect rect(12, 12, 200, 3 * BackgroundCache::tallest);
    const QSize canvas(224, rect.height() + 24);
    const QImage expected = direct(rect, canvas, Style::Aqua::grape, Direction::left, 1.0);
    BackgroundCache cache;
    QImage image = paper(canvas);
    QPainter painter(&image);
    qsizetype bytes = 0;
    for (int top = 0; top < canvas.height(); top += 777) {
        const QRect band = QRect(0, top, canvas.width(), 777);
        painter.setClipRect(band);
        cache.paint(painter, rect, Style::Aqua::grape, Direction::left, 1.0, band);
        if (bytes == 0) bytes = cache.byteCount();
    }
    painter.end();
    EXPECT_TRUE(image == expected);
    EXPECT_EQ(cache.byteCount(), bytes) << "only the masks stay";
}

TEST(BubbleBackground, CacheStaysWithinItsBound) {
    BackgroundCache cache(1024 * 1024);
    QImage image = paper(QSize(300, 1200));
    QPainter painter(&image);
    for (int height = 40; height < 1000; height += 10) {
        cache.paint(painter, QRect(10, 10, 200, height), Style::Aqua::lime, Direction::left, 1.0,
                    image.rect());
    }
    EXPECT_LE(cache.byteCount(), 1024 * 1024);
    EXPECT_GT(cache.byteCount(), 256 * 1024);
}

TEST(BubbleBackground, LayersLieWhereTheyBelong) {
    constexpr int margin = 12;
    const QRect rect(margin, margin, 200, 80);
    const QImage image = direct(rect, QSize(224, 104), Style::Aqua::lime, Direction::left, 1.0);
    const auto at = [&](int x, int y) { return image.pixelColor(margin + x, margin + y); };
    const QColor background(30, 40, 50);
    EXPECT_EQ(at(100, -6), background) << "shadow or bubble outside its bounds";
    EXPECT_LT(at(1, 30).lightness(), 60) << "the strip above the tail is no part of the body";
    EXPECT_LT(at(100, 81).lightness(), background.lightness()) << "no shadow below";
    EXPECT_LT(at(100, 81).lightness(), at(100, -1).lightness()) << "shadow not moved down";
    // The gloss whitens the upper half; the borders' glow makes the rim lighter than the middle.
    EXPECT_LT(at(100, 10).hsvSaturation() + 40, at(100, 70).hsvSaturation());
    EXPECT_GT(at(196, 50).lightness(), at(100, 50).lightness());
    EXPECT_NEAR(at(100, 66).green(), Style::colors(Style::Aqua::lime).bottom.green(), 25)
        << "the gradient is upside down";

    const FancyBackground lime{ChatBubbleShape(Direction::left), Style::colors(Style::Aqua::lime)};
    BackgroundMasks masks = makeBackgroundMasks(lime.shape, lime.inset, rect.size(), 1.0);
    masks.narrowBorder = CoverageMask(masks.outline.width(), masks.outline.height());
    const int around = backgroundMargin(1.0);
    const QImage without =
        composeBackground(masks, lime, rect.height(), 0, rect.height() + 2 * around, 1.0);
    EXPECT_GT(at(198, 50).lightness(), without.pixelColor(around + 198, around + 50).lightness())
        << "no narrow border";
}

}  // namespace
}  // namespace vell
