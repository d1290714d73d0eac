// SPDX-License-Identifier: MIT
#include "identity/identicons/identicon.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QSet>
#include <cmath>

#include "identity/identicons/github_identicon.h"
#include "identity/identicons/identicons.h"
#include "toolkit/style.h"

namespace {

using namespace vell;

// Which parts of each cell are filled, for every shape, turn and inversion. The samples lie where
// no shape has an edge, so how edges are smoothed makes no difference.
TEST(Identicon, DrawsTheSameShapesForeverForTheSameNumber) {
    constexpr int side = 320, step = side / 16;
    QCryptographicHash filled(QCryptographicHash::Sha1);
    for (quint32 shape = 0; shape < 16; shape++)
        for (quint32 turn = 0; turn < 4; turn++)
            for (quint32 inverted = 0; inverted < 2; inverted++) {
                const QImage image = Identicon().icon(
                    (shape & 3) | inverted << 2 | shape << 3 | inverted << 7 | turn << 8 |
                        (15 - shape) << 10 | (1 - inverted) << 14 | (turn ^ 1) << 15,
                    QSizeF(side, side));
                for (int y = step * 11 / 20; y < side; y += step)
                    for (int x = step * 7 / 20; x < side; x += step)
                        filled.addData(QByteArray(1, qAlpha(image.pixel(x, y)) > 127 ? '#' : '.'));
            }
    EXPECT_EQ(filled.result().toHex(), "7e6f7941befd07553158b885c80e7814edbad644");
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
