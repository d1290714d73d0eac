// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTextBoundaryFinder>
#include <random>

#include "timeline/text/height_tree.h"
#include "timeline/text/laid_out_text.h"
#include "timeline/text/text_blocks.h"
#include "toolkit/emoji.h"

namespace vell {
namespace {

QString repeated(const char* text, int count) {
    return QString::fromUtf8(text).repeated(count);
}

TEST(TextBlocks, CoverTheTextWithoutItsLineBreaks) {
    const struct {
        const char* fault;
        QString text;
        size_t blocks;
    } cases[] = {
        {"no block for no text", {}, 1},
        {"the line after the last break is lost", QStringLiteral("a\n"), 2},
        {"CR LF counts twice", QStringLiteral("a\r\nb"), 2},
        {"LF CR counts once", QStringLiteral("a\n\rb"), 3},
        {"vertical white space joins lines", QString::fromUtf8("a\vb\fc\u0085d\u2028e\u2029f"), 6},
        {"just one block", QString(longestBlock, u'a'), 1},
        {"one character more", QString(longestBlock + 1, u'a'), 2},
        {"a line without end in large blocks", QString(8 * longestBlock, u'a'), 16},
        {"a surrogate pair is parted", QStringLiteral("a") + repeated("😀", longestBlock), 3},
        {"a combining mark is parted", QStringLiteral("a") + repeated("e\u0301", longestBlock), 3},
        {"a flag is parted", QStringLiteral("a") + repeated("🇩🇪", longestBlock / 4), 2},
        {"a family is parted", QStringLiteral("a") + repeated("👩‍👩‍👧‍👦", 1000),
         3},
        {"marks without end never advance", QString(2 * longestBlock, QChar(0x301)), 2},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.fault);
        const std::vector<TextBlock> blocks = splitIntoBlocks(row.text, Qt::LeftToRight);
        EXPECT_EQ(blocks.size(), row.blocks);
        QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, row.text);
        QString together;
        for (const TextBlock& block : blocks) {
            ASSERT_LE(block.length, longestBlock);
            const QString part = row.text.mid(block.start, block.length);
            characters.setPosition(block.start);
            EXPECT_TRUE(characters.isAtBoundary() || row.text.isEmpty() ||
                        part.startsWith(QChar(0x301)))
                << block.start;
            together += part;
        }
        QString expected = row.text;
        for (const QChar c : {u'\n', u'\r', u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'}) {
            expected.remove(c);
        }
        EXPECT_EQ(together, expected);
    }
}

TEST(TextBlocks, LongParagraphIsCutBehindABlankAndKeepsItsDirection) {
    const QString text = repeated("שלום abc ", 2000);
    const std::vector<TextBlock> blocks = splitIntoBlocks(text, Qt::LeftToRight);
    ASSERT_GT(blocks.size(), 3u);
    for (size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_TRUE(blocks[i].rightToLeft) << i;
        if (i > 0) {
            EXPECT_EQ(text[blocks[i].start - 1], u' ') << i;
        }
    }
    EXPECT_FALSE(splitIntoBlocks(QStringLiteral("123"), Qt::LeftToRight)[0].rightToLeft);
    EXPECT_TRUE(splitIntoBlocks(QStringLiteral("123"), Qt::RightToLeft)[0].rightToLeft);
}

TEST(Emoji, SequencesAreFoundWhole) {
    const struct {
        const char* text;
        std::vector<EmojiRange> ranges;
    } cases[] = {
        {"no emoji 123 #1 * © → ™", {}},
        {"a 😀 b", {{2, 2}}},
        {"🇩🇪🇫🇷", {{0, 8}}},
        {"👍🏽!", {{0, 4}}},
        {"x👩‍👩‍👧‍👦y", {{1, 11}}},
        {"1️⃣ 1", {{0, 3}}},
        {"❤ ❤️", {{2, 2}}},
        {"😀︎", {}},
        {"❤️‍🔥", {{0, 5}}},
        {"🏴󠁧󠁢󠁥󠁮󠁧󠁿", {{0, 14}}},
        {"漢字かな한글", {}},
    };
    for (const auto& row : cases) {
        const QString text = QString::fromUtf8(row.text);
        const EmojiText found = findEmoji(text);
        EXPECT_EQ(found.ranges, row.ranges) << row.text;
        EXPECT_EQ(found.shown.size(), text.size()) << row.text;
    }
    const QString keycap = QString::fromUtf8("1️⃣");
    EXPECT_EQ(findEmoji(keycap).shown, QString::fromUtf16(u"1\u20E3\uFE0F"));
    EXPECT_EQ(keycap[1], QChar(0xFE0F)) << "the message itself was changed";
}

TEST(HeightTree, AgreesWithPlainSums) {
    std::mt19937 random(7);
    for (const int count : {1, 2, 63, 64, 65, 1000, 4096, 5000}) {
        std::vector<int> plain(static_cast<size_t>(count));
        for (int& height : plain)
            height = random() % 3 == 0 ? 0 : static_cast<int>(random() % 90);
        HeightTree tree;
        tree.assign(count, [&](qsizetype i) { return plain[static_cast<size_t>(i)]; });
        for (int change = 0; change < 200; ++change) {
            const auto index = static_cast<size_t>(random()) % plain.size();
            plain[index] = static_cast<int>(random() % 70);
            tree.setHeight(static_cast<qsizetype>(index), plain[index]);
        }
        qint64 top = 0;
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(tree.top(i), top);
            const int height = plain[static_cast<size_t>(i)];
            for (const int inside : {0, height - 1}) {
                if (inside >= 0 && inside < height) {
                    ASSERT_EQ(tree.indexAt(top + inside), i);
                }
            }
            top += height;
        }
        EXPECT_EQ(tree.total(), top);
        EXPECT_EQ(tree.top(count), top);
    }
    EXPECT_EQ(HeightTree().indexAt(0), -1);
    HeightTree flat;
    flat.assign(70, [](qsizetype) { return 0; });
    EXPECT_EQ(flat.indexAt(0), 69) << "nothing has a height";
}

TextFormat format(qreal ratio = 1) {
    TextFormat format;
    format.font = QApplication::font();
    format.font.setPixelSize(16);
    format.lineSpacing = 8;
    format.ratio = ratio;
    return format;
}

TEST(LaidOutText, LongTextIsMeasuredBlockByBlockUpToTheExactHeight) {
    const QString lines = repeated("A line of some length that may wrap.\nshort\n\n", 400);
    LaidOutText text(lines, format(), 300);
    ASSERT_TRUE(text.isLong());
    ASSERT_EQ(text.blockCount(), 1201);
    qint64 sum = 0;
    for (qsizetype i = 0; i < text.blockCount(); ++i) {
        text.measureBlock(i);
        EXPECT_EQ(text.blockTop(i), sum);
        sum = text.blockTop(i + 1);
    }
    EXPECT_FALSE(text.firstEstimated());
    const LaidOutText three(QStringLiteral("A line of some length that may wrap.\nshort\n"),
                            format(), 300);
    // 400 times three paragraphs and the empty one behind the last break.
    const int empty = LaidOutText(QString(), format(), 300).height();
    EXPECT_EQ(text.height(), 400 * (three.height() + 8) + empty);
}

TEST(LaidOutText, OffsetsAndPlacesBelongTogether) {
    const QString content =
        QStringLiteral("First line\nשורה שנייה\nand a third one that wraps a bit");
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        const LaidOutText text(content, format(ratio), static_cast<int>(160 * ratio));
        EXPECT_LE(text.width(), 160 * ratio);
        for (qsizetype offset = 0; offset < content.size(); ++offset) {
            const QRect caret = text.caret(offset);
            EXPECT_TRUE(QRect(0, 0, text.width() + 1, text.height()).contains(caret)) << offset;
            const qsizetype found = text.offsetAt(caret.center());
            EXPECT_EQ(text.caret(found).topLeft(), caret.topLeft()) << offset;
        }
        EXPECT_EQ(text.offsetAt(QPoint(5, -1)), 0);
        EXPECT_EQ(text.offsetAt(QPoint(5, 10000)), content.size());
        EXPECT_TRUE(text.isOnText(text.caret(3).center()));
        EXPECT_FALSE(text.isOnText(QPoint(text.width() + 20, 5)));
        // A right-to-left paragraph starts at the right edge, a left-to-right one at the left.
        EXPECT_EQ(text.caret(0).x(), 0);
        EXPECT_GT(text.caret(11).x(), text.width() * 2 / 3);
    }
}

TEST(LaidOutText, ALetterWiderThanTheRoomIsWhole) {
    TextFormat huge = format();
    huge.font.setPixelSize(400);
    const qreal letter = QFontMetricsF(huge.font).horizontalAdvance(u'W');
    for (const qsizetype count : {qsizetype(3), LaidOutText::longestShort + 1}) {
        const LaidOutText text(QString(count, u'W'), huge, 100);
        EXPECT_GE(text.width(), letter);
    }
}

TEST(LaidOutText, RegionsAreWhereTheirCharactersAre) {
    const struct {
        const char* what;
        QString content;
        int width;
    } rows[] = {
        {"plain", QStringLiteral("some words that wrap somewhere"), 200},
        {"both directions", QStringLiteral("abc שלום, עולם def 123 אבג"), 600},
        {"lines", QStringLiteral("one\n\nשורה\nthree"), 200},
        {"a character in colour", QString::fromUtf8("a😀b"), 200},
    };
    for (const auto& row : rows) {
        const LaidOutText text(row.content, format(2), row.width);
        const auto region = [&](qsizetype from, qsizetype to) {
            return text.region({from, to}, 0, text.height());
        };
        QRegion together;
        for (qsizetype i = 0; i < row.content.size(); ++i) {
            const std::vector<QRect> rects = region(i, i + 1);
            if (row.content[i].isSpace() || row.content[i].isLowSurrogate()) continue;
            ASSERT_EQ(rects.size(), 1u) << row.what << " " << i;
            EXPECT_EQ(text.characterAt(rects[0].center()), i) << row.what;
            EXPECT_TRUE(QRect(-1, 0, text.width() + 2, text.height()).contains(rects[0]));
            together += rects[0];
        }
        QRegion whole;
        for (const QRect& rect : region(0, row.content.size()))
            whole += rect;
        EXPECT_TRUE((together - whole).isEmpty()) << row.what << ": a character sticks out";
        EXPECT_TRUE(region(3, 3).empty()) << row.what;
    }
    const LaidOutText lines(QStringLiteral("a\n\nb"), format(1), 200);
    EXPECT_EQ(lines.region({0, 4}, 0, lines.height()).size(), 3u) << "the empty line shows nothing";
    EXPECT_EQ(lines.region({0, 1}, 0, lines.height()).size(), 1u);
}

TEST(LaidOutText, EmojiAreColouredNeverBreakInTwoAndTakeAWholeLine) {
    if (emojiFamily().isEmpty()) GTEST_SKIP() << "no colour font for emoji";
    const struct {
        const char* text;
        int ems;  // how wide at most
    } cases[] = {{"👩‍👩‍👧‍👦", 2},
                 {"🇩🇪", 2},
                 {"1️⃣", 2},
                 {"❤️‍🔥", 2},
                 {"👍🏽", 2},
                 {"👍🏽👍🏽", 4}};
    for (const auto& row : cases) {
        const LaidOutText text(QString::fromUtf8(row.text), format(), 400);
        EXPECT_LE(text.width(), row.ems * 16) << row.text;
        const LaidOutText letters(QStringLiteral("ok"), format(), 400);
        EXPECT_GE(text.height(), letters.height()) << row.text;
        EXPECT_EQ(text.caret(0), QRect(0, 0, 1, text.height())) << row.text;
        QImage image(text.width(), text.height(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setPen(Qt::black);
        text.paint(painter, QPoint(0, 0), 0, text.height());
        painter.end();
        bool isBlank = true;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                isBlank &= image.pixelColor(x, y) == Qt::white;
        }
        EXPECT_FALSE(isBlank) << row.text;
    }
}

}  // namespace
}  // namespace vell
