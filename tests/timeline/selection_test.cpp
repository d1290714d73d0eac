// SPDX-License-Identifier: MIT
//
// Selecting with mouse and keyboard, as the events of a real window arrive.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <ctime>

#include "timeline/input/row_place.h"
#include "timeline/input/selection.h"
#include "timeline/text/text_units.h"
#include "timeline/window.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::me;
using test::Window;

TesselChatLog smallTalk() {
    return LogBuilder()
        .text(bob, QStringLiteral("Hello there, cat"))
        .add(bob, TesselChatLog::User())
        .text(me, QStringLiteral("one\ntwo words\nthree"))
        .add(me, test::picture(QSize(40, 40)))
        .text({}, QStringLiteral("Bob left"))
        .log();
}

std::shared_ptr<const FoundSpans> found(std::vector<TextSpan> spans) {
    return std::make_shared<const FoundSpans>(std::move(spans));
}

TEST(Selecting, DragsGoByCharactersAcrossRowsAndCopyPicturesByName) {
    Window window(smallTalk());
    // Half a character to the left of where the places point.
    const auto before = [&](qsizetype row, qsizetype offset) {
        return window.place(row, offset) - QPoint(3, 0);
    };
    window.drag(before(0, 6), before(0, 11));
    EXPECT_EQ(window.selected(), QStringLiteral("there"));
    window.drag(before(0, 11), before(0, 6));
    EXPECT_EQ(window.selected(), QStringLiteral("there")) << "dragged backwards";
    const TimelineLayout::Row& picture = window.view.timeline().row(3);
    const QPoint corner(window.view.timeline().rowLeft(),
                        static_cast<int>(window.view.timeline().rowTop(3)));
    window.press(corner + picture.layout.content.center());
    EXPECT_FALSE(window.view.hasSelection()) << "a press on a picture drops it";
    window.release(corner + picture.layout.content.center());
    window.drag(before(0, 13), before(2, 4));
    EXPECT_EQ(window.selected(), QStringLiteral("cat\none\n"));
    window.drag(before(2, 14), before(4, 3));
    EXPECT_EQ(window.selected(), QStringLiteral("three\nPicture\nBob"));

    window.press(before(0, 6));
    window.release(before(0, 6));
    EXPECT_FALSE(window.view.hasSelection());
}

TEST(Selecting, ClicksTakeWordsAndParagraphsAndDragsGoOnByThem) {
    Window window(smallTalk());
    const QPoint inWord = window.place(2, 5);
    QTest::mouseDClick(window.view.viewport(), Qt::LeftButton, {}, inWord);
    EXPECT_EQ(window.selected(), QStringLiteral("two"));
    QTest::mouseClick(window.view.viewport(), Qt::LeftButton, {}, inWord);
    EXPECT_EQ(window.selected(), QStringLiteral("two words"));

    QTest::mouseDClick(window.view.viewport(), Qt::LeftButton, {}, window.place(0, 8));
    EXPECT_EQ(window.selected(), QStringLiteral("there"));
    window.press(window.place(0, 1), Qt::ShiftModifier);
    window.release(window.place(0, 1));
    EXPECT_EQ(window.selected(), QStringLiteral("Hello there"));
    window.key(Qt::Key_Right, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(window.selected(), QStringLiteral(" there")) << "the free end is in front";
}

TEST(Selecting, KeysMoveTheFreeEndAndEscapeDropsIt) {
    Window window(smallTalk());
    const QPoint start = window.place(0, 13) - QPoint(3, 0);
    window.press(start);
    window.release(start);
    const struct {
        const char* what;
        int key;
        Qt::KeyboardModifiers modifiers;
        QString selected;
    } steps[] = {
        {"a character", Qt::Key_Right, Qt::ShiftModifier, QStringLiteral("c")},
        {"back over the start", Qt::Key_Left, Qt::ShiftModifier, {}},
        {"a word back", Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier,
         QStringLiteral("there, ")},
        {"the row's end", Qt::Key_End, Qt::ShiftModifier, QStringLiteral("cat")},
        {"into the next text, not the caption", Qt::Key_Right, Qt::ShiftModifier,
         QStringLiteral("cat")},
        {"a word there", Qt::Key_Right, Qt::ShiftModifier | Qt::ControlModifier,
         QStringLiteral("cat\none")},
        {"the log's end", Qt::Key_End, Qt::ShiftModifier | Qt::ControlModifier,
         QStringLiteral("cat\none\ntwo words\nthree\nPicture\nBob left")},
        {"a line up onto the picture", Qt::Key_Up, Qt::ShiftModifier,
         QStringLiteral("cat\none\ntwo words\nthree\nPicture")},
    };
    for (const auto& step : steps) {
        window.key(step.key, step.modifiers);
        EXPECT_EQ(window.selected(), step.selected) << step.what;
    }
    window.key(Qt::Key_Escape);
    EXPECT_FALSE(window.view.hasSelection());
}

TEST(Selecting, BeyondTheEdgeTheTimelineScrolls) {
    LogBuilder builder;
    for (int i = 0; i < 100; ++i)
        builder.text(bob, QStringLiteral("line %1").arg(i));
    Window window(builder.log());
    window.press(window.place(0, 0) - QPoint(3, 0));
    window.move(QPoint(100, 900));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return window.selected().contains(QStringLiteral("line 40")); }, 20'000));
    window.release(QPoint(100, 900));
    const int place = window.view.verticalScrollBar()->value();
    QTest::qWait(50);
    EXPECT_EQ(window.view.verticalScrollBar()->value(), place) << "goes on after the release";
}

TEST(Selecting, PageKeysMoveTheFreeEndByAPage) {
    LogBuilder builder;
    for (int i = 0; i < 60; ++i)
        builder.text(bob, QStringLiteral("line %1").arg(i));
    Window window(builder.log());
    const auto lines = [&] { return window.selected().count(u'\n'); };
    window.key(Qt::Key_Home);
    window.key(Qt::Key_PageDown, Qt::ShiftModifier);
    const qsizetype page = lines();
    EXPECT_GE(page, 8);
    EXPECT_LE(page, 640 / 40);
    window.key(Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_NEAR(lines(), 2 * page, 2);
    window.key(Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_NEAR(lines(), page, 1);
    for (int i = 0; i < 10; ++i)
        window.key(Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_TRUE(window.selected().endsWith(QStringLiteral("line 59")));
    for (int i = 0; i < 10; ++i)
        window.key(Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_FALSE(window.view.hasSelection());
}

TEST(Selecting, CopyingMakesTheTextWhenItIsAskedFor) {
    Window window(smallTalk());
    window.view.selectAll();
    window.view.copySelection();
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(copied->text(), window.selected());
    window.view.clearSelection();
    window.view.copySelection();
    EXPECT_FALSE(QGuiApplication::clipboard()->text().isEmpty()) << "nothing was copied over it";
}

TEST(Selecting, HighlightsAreWhereTheirTextIsAndNowhereElse) {
    Window window(smallTalk());
    const auto painted = [&] {
        return window.view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    };
    const QImage plain = painted();
    const auto changed = [&](const QImage& now) {
        QRect rect;
        for (int y = 0; y < now.height(); ++y) {
            for (int x = 0; x < now.width(); ++x) {
                if (now.pixel(x, y) != plain.pixel(x, y)) rect |= QRect(x, y, 1, 1);
            }
        }
        return rect;
    };
    const QRect there(window.place(0, 6), window.place(0, 10));
    window.view.setFindMatches(found({{{0, 6}, {0, 11}}}), -1);
    const QImage match = painted();
    EXPECT_TRUE(changed(match).contains(there));
    EXPECT_TRUE(there.adjusted(-12, -20, 12, 20).contains(changed(match)));
    window.view.setFindMatches(found({{{0, 6}, {0, 11}}}), 0);
    EXPECT_NE(painted(), match) << "the current match looks like any other";
    window.view.setFindMatches(found({}), -1);
    EXPECT_EQ(painted(), plain);
    window.drag(there.topLeft() - QPoint(3, 0), there.bottomRight() + QPoint(3, 0));
    EXPECT_EQ(window.selected(), QStringLiteral("there"));
    EXPECT_TRUE(there.adjusted(-12, -20, 12, 20).contains(changed(painted())));
}

TEST(Selecting, MatchesFarAwayInLongTextsAreBroughtIntoView) {
    QString lines;
    for (int i = 0; i < 20'000; ++i)
        lines += QStringLiteral("line %1 of many that wrap somewhere at the end of it\n").arg(i);
    LogBuilder builder;
    builder.text(bob, QStringLiteral("before")).text(bob, lines).text(bob, QStringLiteral("after"));
    Window window(builder.log());
    for (const int line : {15'000, 20, 19'999, 10'000}) {
        const QString needle = QStringLiteral("line %1 ").arg(line);
        const qsizetype start = lines.indexOf(needle);
        const TextSpan match{{1, start}, {1, start + needle.size()}};
        window.view.setFindMatches(found({match}), 0);
        window.view.scroller().revealText(match);
        const QPoint place = window.place(1, start);
        EXPECT_TRUE(window.view.viewport()->rect().contains(place)) << line << " at " << place.y();
    }
}

TEST(Selecting, PaintingCostsTheMatchesThatAreSeenAndNotAll) {
    constexpr qsizetype seen = 2'000, all = 250'000;
    Window window(LogBuilder().text(bob, QStringLiteral("a b ").repeated(all)).log());
    const auto cost = [&](qsizetype count) {
        std::vector<TextSpan> matches;
        for (qsizetype i = 0; i < count; ++i)
            matches.push_back({{0, 4 * i}, {0, 4 * i + 1}});
        window.view.setFindMatches(found(std::move(matches)), 0);
        const std::clock_t start = std::clock();
        for (int i = 0; i < 5; ++i)
            window.view.viewport()->grab();
        return static_cast<double>(std::clock() - start);
    };
    (void)cost(seen);
    const double few = cost(seen);
    EXPECT_LT(cost(all), 3 * few);
}

TEST(TextUnits, FindWordsAndCharactersAsReadersSeeThem) {
    const QString family = QString::fromUtf8("👩‍👩‍👧‍👦");
    const QString text = QStringLiteral("a ") + family + QStringLiteral(" don't");
    EXPECT_EQ(nextPlace(text, 2, TextUnit::character), 2 + family.size());
    EXPECT_EQ(previousPlace(text, 2 + family.size(), TextUnit::character), 2);
    const TextRange word = unitAround(text, text.size(), TextUnit::word);
    EXPECT_EQ(text.mid(word.from, word.to - word.from), QStringLiteral("don't"));
    const QString endless(100'000, u'w');
    EXPECT_GT(nextPlace(endless, 50'000, TextUnit::word), 50'000);
    EXPECT_LT(previousPlace(endless, 50'000, TextUnit::word), 50'000);
}

}  // namespace
}  // namespace vell
