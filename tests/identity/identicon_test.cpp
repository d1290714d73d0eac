// SPDX-License-Identifier: MIT
#include "identity/identicons/identicon.h"

#include <gtest/gtest.h>

#include <QPointF>
#include <QSet>
#include <cmath>
#include <vector>

#include "identity/identicons/github_identicon.h"
#include "identity/identicons/identicons.h"
#include "toolkit/style.h"

namespace {

using namespace vell;
using Polygon = std::vector<QPointF>;

// The shapes once more, as points of the lattice, y upwards.
const std::vector<Polygon> shapes = {
    {{0, 0}, {4, 0}, {4, 4}, {0, 4}},
    {{0, 0}, {4, 0}, {0, 4}},
    {{2, 0}, {4, 4}, {0, 4}},
    {{0, 0}, {2, 0}, {0, 4}, {2, 4}},
    {{2, 0}, {4, 2}, {2, 4}, {0, 2}},
    {{0, 0}, {4, 2}, {4, 4}, {2, 4}},
    {{2, 0}, {4, 4}, {2, 4}, {3, 2}, {1, 2}, {2, 4}, {2, 0}},
    {{0, 0}, {4, 2}, {2, 4}},
    {{1, 1}, {3, 1}, {3, 3}, {1, 3}},
    {{4, 0}, {0, 4}, {0, 2}, {2, 2}},
    {{0, 0}, {2, 0}, {2, 2}, {0, 2}},
    {{0, 2}, {4, 2}, {2, 4}},
    {{0, 4}, {2, 2}, {4, 4}},
    {{0, 2}, {2, 0}, {2, 2}},
    {{0, 0}, {2, 0}, {0, 2}},
};

// What the picture shows at a point: in the shape (non-zero winding), out of it, or too close to an
// edge for a pixel to tell.
enum class Place { inside, outside, edge };

Place placeIn(const Polygon& polygon, QPointF p, double margin) {
    int winding = 0;
    for (size_t i = 0; i < polygon.size(); i++) {
        const QPointF a = polygon[i], b = polygon[(i + 1) % polygon.size()];
        const QPointF ab = b - a, ap = p - a;
        const double length = QPointF::dotProduct(ab, ab);
        const double t = length > 0 ? qBound(0.0, QPointF::dotProduct(ap, ab) / length, 1.0) : 0;
        const QPointF off = ap - t * ab;
        if (std::hypot(off.x(), off.y()) < margin) return Place::edge;
        const double side = ab.x() * ap.y() - ab.y() * ap.x();
        if (a.y() <= p.y() && b.y() > p.y() && side > 0) winding++;
        if (a.y() > p.y() && b.y() <= p.y() && side < 0) winding--;
    }
    return winding != 0 ? Place::inside : Place::outside;
}

Polygon turned(Polygon polygon, int quarters) {
    for (QPointF& p : polygon)
        for (int i = 0; i < quarters % 4; i++)
            p = QPointF(4 - p.y(), p.x());  // counter-clockwise about the middle
    return polygon;
}

struct Expected {
    int shape;
    bool inverted;
    int turn;
};

void expectCell(const QImage& image, int column, int row, Expected expected, quint32 number) {
    if (expected.shape == 15) expected = {0, !expected.inverted, expected.turn};
    const Polygon shape = turned(shapes[static_cast<size_t>(expected.shape)], expected.turn);
    const int cell = image.width() / 4;
    int told = 0;
    for (int y = 0; y < cell; y++) {
        for (int x = 0; x < cell; x++) {
            const QPointF centre((x + 0.5) * 4 / cell, (y + 0.5) * 4 / cell);
            const Place place = placeIn(shape, centre, 3.0 / cell);
            if (place == Place::edge) continue;
            told++;
            const bool filled = (place == Place::inside) != expected.inverted;
            const int alpha =
                qAlpha(image.pixel(column * cell + x, image.height() - 1 - (row * cell + y)));
            ASSERT_EQ(alpha, filled ? 255 : 0) << "number " << number << ", cell " << column << ","
                                               << row << " at " << x << "," << y;
        }
    }
    ASSERT_GT(told, cell * cell / 4) << "the samples say something";
}

void expectPicture(quint32 number) {
    const QImage image = Identicon().icon(number, QSizeF(40, 40));
    ASSERT_EQ(image.size(), QSize(40, 40));
    const int centre[] = {0, 4, 8, 15};
    for (const auto& [x, y] : {std::pair(1, 1), {2, 1}, {2, 2}, {1, 2}})
        expectCell(image, x, y, {centre[number & 3], (number & 4) != 0, 0}, number);
    const auto turn = [](quint32 own, int extra) { return (static_cast<int>(own) + extra) % 4; };
    const int corner = (number >> 3) & 15, side = (number >> 10) & 15;
    const bool cornerInverted = number & (1u << 7), sideInverted = number & (1u << 14);
    int extra = 0;
    for (const auto& [x, y] : {std::pair(0, 0), {3, 0}, {3, 3}, {0, 3}})
        expectCell(image, x, y, {corner, cornerInverted, turn((number >> 8) & 3, extra++)}, number);
    extra = 0;
    for (const auto& [x, y] :
         {std::pair(1, 0), {3, 1}, {2, 3}, {0, 2}, {0, 1}, {2, 0}, {3, 2}, {1, 3}})
        expectCell(image, x, y, {side, sideInverted, turn((number >> 15) & 3, extra++)}, number);
}

TEST(Identicon, DrawsEveryShapeTurnAndHoleInItsCells) {
    for (quint32 shape = 0; shape < 16; shape++)
        for (quint32 turn = 0; turn < 4; turn++)
            for (quint32 inverted = 0; inverted < 2; inverted++) {
                const quint32 other = 15 - shape;
                expectPicture((shape & 3) | inverted << 2 | shape << 3 | inverted << 7 | turn << 8 |
                              other << 10 | (1 - inverted) << 14 | (turn ^ 1) << 15);
                if (HasFatalFailure()) return;
            }
}

TEST(Identicon, ColoursItsShapesWithFiveBitsEach) {
    const QColor colour = color(0x8000 | 31 << 10 | 16 << 5 | 1);
    EXPECT_EQ(colour.rgba(), qRgba(255, 132, 8, 255));  // bit 15 means nothing

    const QImage black = Identicon().icon(0, QSizeF(40, 40));
    const QImage red = Identicon().icon(quint32{31 << 10} << 16, QSizeF(40, 40));
    for (int y = 0; y < 40; y++)
        for (int x = 0; x < 40; x++) {
            ASSERT_EQ(black.pixel(x, y), qRgba(0, 0, 0, 255));
            ASSERT_EQ(red.pixel(x, y), qRgba(255, 0, 0, 255));
        }
}

TEST(Identicon, ScalesTheGridDownToTheAskedSize) {
    const QImage icon = Identicon().icon(0, Style::userIconSize, 1.0);
    EXPECT_EQ(icon.size(), QSize(38, 38));
    EXPECT_EQ(icon.pixel(0, 0), qRgba(0, 0, 0, 255)) << "no soft edge";
    EXPECT_EQ(icon.pixel(37, 37), qRgba(0, 0, 0, 255)) << "no soft edge";

    for (const qreal ratio : {1.25, 2.0, 3.0}) {
        const QImage sharp = Identicon().icon(quint32{3}, Style::userIconSize, ratio);
        EXPECT_EQ(sharp.width(), std::ceil(38 * ratio));
        EXPECT_DOUBLE_EQ(sharp.deviceIndependentSize().width(), 38) << "points stay points";
    }
    EXPECT_FALSE(scale(icon, 0, 10));
    EXPECT_EQ(*scale(icon, 38, 38), icon);
}

TEST(Identicon, FollowsTheIdentityAndNothingElse) {
    EXPECT_EQ(jenkinsHash({}), 0u);
    EXPECT_EQ(jenkinsHash("a"), 0xca2e9442u);
    EXPECT_EQ(jenkinsHash("The quick brown fox jumps over the lazy dog"), 0x519e91f5u);

    const Identicon generator;
    const QSizeF size(40, 40);
    EXPECT_EQ(generator.icon(QStringLiteral("ü"), size, 1), generator.icon(0x37439270u, size, 1))
        << "bytes above 127 are not negative";
    EXPECT_FALSE(generator.icon(QString(QChar(0xd800)), size, 1)) << "half a character";

    QSet<QByteArray> pictures;
    for (int i = 0; i < 300; i++) {
        const QImage icon = *generator.icon(QStringLiteral("user%1").arg(i), size, 1);
        pictures.insert(
            QByteArray(reinterpret_cast<const char*>(icon.constBits()), icon.sizeInBytes()));
    }
    EXPECT_GT(pictures.size(), 290) << "people can be told apart";
}

TEST(Identicon, RefusesImpossibleSizes) {
    EXPECT_DEATH((void)Identicon().icon(1, QSizeF(std::nan(""), 4)), "impossible size");
    EXPECT_DEATH((void)Identicon().icon(1, QSizeF(4, 1e9)), "impossible size");
    EXPECT_DEATH((void)GitHubIdenticon().icon(1, QSizeF(0.5, 40)), "impossible size");
}

// Reads the picture of 5 x 5 squares back, the top row first.
QByteArray squares(const QImage& image) {
    QByteArray text;
    for (int row = 0; row < 5; row++) {
        for (int column = 0; column < 5; column++) {
            const QPoint middle(image.width() * (2 * column + 1) / 10,
                                image.height() * (2 * row + 1) / 10);
            text += qAlpha(image.pixel(middle)) == 255 ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

TEST(GitHubIdenticon, MirrorsTwoColumnsAboutTheMiddleOne) {
    const GitHubIdenticon generator;
    const struct {
        const char* fault;
        quint32 number;
        const char* picture;
    } rows[] = {
        {"mirror of column 0, lowest row", 1, ".....\n.....\n.....\n.....\n#...#\n"},
        {"axis drawn once", 4, ".....\n.....\n.....\n.....\n..#..\n"},
        {"bits between rows ignored", 1u << 3 | 1u << 24, ".....\n.....\n.....\n.....\n.....\n"},
        {"rows upwards", 2u << 20 | 1u << 5, ".#.#.\n.....\n.....\n#...#\n.....\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(squares(generator.icon(row.number, QSizeF(40, 40))), row.picture) << row.fault;
        EXPECT_EQ(squares(generator.icon(row.number, QSizeF(38, 38))), row.picture) << row.fault;
    }
    // Squares of 7.6 pixels meet without a gap, an overlap or a soft edge.
    const QImage full = generator.icon(0x00739ce7, QSizeF(38.9, 38.9));
    ASSERT_EQ(full.size(), QSize(38, 38));
    for (int y = 0; y < 38; y++)
        for (int x = 0; x < 38; x++)
            ASSERT_EQ(qAlpha(full.pixel(x, y)), 255) << x << "," << y;
}

TEST(Identicons, KeepsOnePictureAUserAndSharperOnesBeside) {
    Identicons cache;
    const QImage first = cache.icon(QStringLiteral("alice"));
    EXPECT_EQ(cache.icon(QStringLiteral("alice")).cacheKey(), first.cacheKey());
    EXPECT_EQ(first.devicePixelRatio(), 1.0);

    const QImage sharp = cache.icon(QStringLiteral("alice"), 2);
    EXPECT_EQ(sharp.size(), QSize(76, 76));
    EXPECT_EQ(cache.icon(QStringLiteral("alice"), 2).cacheKey(), sharp.cacheKey());
    EXPECT_EQ(cache.pictures().keys(), QStringList{QStringLiteral("alice")});

    EXPECT_TRUE(cache.icon(QString(QChar(0xdc00))).isNull());
    EXPECT_EQ(cache.pictures().size(), 1);
}

}  // namespace
