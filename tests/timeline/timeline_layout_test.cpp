// SPDX-License-Identifier: MIT
#include "timeline/layout/timeline_layout.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

#include "timeline/fixture.h"
#include "timeline/layout/scroll_mapping.h"
#include "timeline/random_log.h"

namespace vell {
namespace {

using test::Context;

std::shared_ptr<const TesselChatLog> shared(TesselChatLog log) {
    return std::make_shared<const TesselChatLog>(std::move(log));
}

qint64 exactTotal(const TesselChatLog& log, const Context& context, int rowWidth) {
    qint64 total = 0;
    for (const auto& event : log.events()) {
        const TimelineRowView row(event, TimelineRowView::isOwn(event, log));
        const int height = row.measure(context.rows, rowWidth).height;
        total += height > 0 ? height + context.rows.px(8) : 0;
    }
    return total + context.rows.px(8);
}

void finish(TimelineLayout& layout) {
    while (layout.makeExact(QDeadlineTimer(5))) {
    }
}

// Rows follow each other without gaps and fill the viewport as far as the log goes.
void expectFilled(const TimelineLayout& layout, const Context& context) {
    const auto& rows = layout.visibleRows();
    ASSERT_FALSE(rows.empty());
    EXPECT_LE(rows.front().top, 0);
    for (size_t i = 0; i + 1 < rows.size(); ++i) {
        EXPECT_EQ(rows[i].top + rows[i].row->layout.height + context.rows.px(8), rows[i + 1].top);
    }
    const int end = rows.back().top + rows.back().row->layout.height;
    if (end < layout.viewportHeight() - context.rows.px(16)) {
        EXPECT_EQ(layout.offset(), 0) << "room below although there is something above";
    }
    EXPECT_EQ(layout.rowTop(rows.front().index), rows.front().top);
}

TEST(TimelineLayout, IdlePassMakesAllHeightsExactAndMovesNothing) {
    const struct {
        int events;
        int width;
        qint64 fontSize;
        qreal ratio;
        double place;
    } cases[] = {{50000, 700, 16, 1.0, 0.5}, {2000, 300, 13, 2.0, 0.9},  {2000, 1500, 40, 1.5, 0.1},
                 {2000, 2000, 9, 1.25, 1.0}, {2000, 900, 100, 3.0, 0.3}, {3, 700, 16, 1.0, 0.0}};
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << row.events << " in " << row.width);
        const auto log = shared(test::randomLog(row.events, 11));
        const Context context(row.ratio, Qt::LeftToRight, row.fontSize);
        TimelineLayout layout(log, context.rows);
        layout.reset(row.width, 800);
        layout.scrollTo(
            static_cast<qint64>(row.place * static_cast<double>(layout.contentHeight())));
        expectFilled(layout, context);
        const auto before = layout.visibleRows();
        finish(layout);
        EXPECT_EQ(layout.contentHeight(), exactTotal(*log, context, layout.rowWidth()));
        const auto& after = layout.visibleRows();
        ASSERT_EQ(before.size(), after.size());
        for (size_t i = 0; i < before.size(); ++i) {
            EXPECT_EQ(before[i].index, after[i].index);
            EXPECT_EQ(before[i].top, after[i].top);
        }
    }
}

TEST(TimelineLayout, IdlePassStaysNearTheViewInVeryLongLogs) {
    const Context context;
    const auto log = shared(test::randomLog(TimelineLayout::mostMadeExact + 1, 12));
    TimelineLayout layout(log, context.rows);
    layout.reset(700, 800);
    layout.scrollTo(layout.contentHeight() / 2);
    const auto top = layout.visibleRows().front();
    std::vector<bool> seen;
    for (qsizetype i = 0; i < layout.rowCount(); ++i)
        seen.push_back(layout.isExact(i));
    finish(layout);
    qsizetype exact = 0;
    for (qsizetype i = 0; i < layout.rowCount(); ++i) {
        if (!layout.isExact(i) || seen[static_cast<size_t>(i)]) continue;
        ++exact;
        EXPECT_LT(std::abs(i - top.index), 2000) << "far away";
    }
    EXPECT_GT(exact, 500);
    EXPECT_EQ(layout.visibleRows().front().index, top.index);
    EXPECT_EQ(layout.visibleRows().front().top, top.top);
}

TEST(TimelineLayout, ScrollingMovesWhatIsSeenByJustThatMuch) {
    const Context context(1.5);
    const auto log = shared(test::randomLog(4000, 5));
    TimelineLayout layout(log, context.rows);
    layout.reset(900, 1000);
    layout.scrollTo(layout.contentHeight() / 2);
    QRandomGenerator random(3);
    for (int step = 0; step < 300; ++step) {
        const auto before = layout.visibleRows();
        const int distance = random.bounded(-700, 700);
        layout.scrollBy(distance);
        expectFilled(layout, context);
        int compared = 0;
        for (const auto& was : before) {
            for (const auto& is : layout.visibleRows()) {
                if (was.index != is.index) continue;
                EXPECT_EQ(is.top, was.top - distance);
                ++compared;
            }
        }
        EXPECT_GT(compared, 0);
        if (step % 10 == 0) layout.makeExact(QDeadlineTimer(1));
    }
}

TEST(TimelineLayout, EndsAreEnds) {
    const Context context;
    for (const int count : {0, 1, 5, 3000}) {
        SCOPED_TRACE(count);
        const auto log = shared(test::randomLog(count, 21));
        TimelineLayout layout(log, context.rows);
        layout.reset(600, 500);
        layout.scrollBy(-100000);
        EXPECT_EQ(layout.offset(), 0);
        layout.scrollTo(std::numeric_limits<qint64>::max() / 2);
        EXPECT_EQ(layout.offset(), std::max<qint64>(layout.contentHeight() - 500, 0));
        layout.scrollBy(300);
        EXPECT_EQ(layout.offset(), std::max<qint64>(layout.contentHeight() - 500, 0));
        if (count == 3000) {
            const auto& last = layout.visibleRows().back();
            EXPECT_EQ(last.top + last.row->layout.height + 16, 500) << "padding at the end";
        }
        layout.scrollTo(-5);
        EXPECT_EQ(layout.offset(), 0);
    }
}

TEST(TimelineLayout, NewWidthOrFontKeepsTheLineAtTheTop) {
    test::LogBuilder builder;
    for (int i = 0; i < 500; ++i) {
        QString text;
        for (int word = 0; word < 200; ++word)
            text += QString::number(i * 1000 + word) + u' ';
        builder.text(test::bob, text);
    }
    const auto log = shared(builder.log());
    Context context;
    TimelineLayout layout(log, context.rows);
    layout.reset(900, 600);
    layout.scrollTo(layout.contentHeight() / 3);
    const auto topLine = [&] {
        const auto& row = layout.visibleRows().front();
        const RowLayout& parts = row.row->layout;
        return std::pair(row.index, parts.text->line(-row.top - parts.content.top()).start);
    };
    const auto first = topLine();
    for (const int width : {300, 1500, 500, 900}) {
        context.rows.fonts = RowFonts::make(QApplication::font(), width / 30);
        layout.reset(width, 600);
        EXPECT_EQ(topLine().first, first.first) << width;
        EXPECT_NEAR(static_cast<double>(topLine().second), static_cast<double>(first.second), 250);
    }
}

TEST(TimelineLayout, LongTextsAreSeenExactlyAndTheRestIsEstimated) {
    const QString line = QStringLiteral("One of very many lines, some of which are wrapped.");
    test::LogBuilder builder;
    builder.text(test::bob, QStringLiteral("before"));
    builder.text(test::bob, (line + u'\n').repeated(20000));
    builder.text(test::me, QString(300000, u'x'));
    builder.text({}, (line + u' ').repeated(2000));
    builder.text(test::bob, QStringLiteral("after"));
    const auto log = shared(builder.log());
    const Context context(2);
    TimelineLayout layout(log, context.rows);
    layout.reset(800, 1600);
    layout.scrollTo(std::numeric_limits<qint64>::max() / 2);
    EXPECT_EQ(layout.visibleRows().back().index, 4);
    EXPECT_FALSE(layout.isExact(1));
    QRandomGenerator random(9);
    for (int step = 0; step < 200; ++step) {
        if (step % 20 == 0) layout.scrollTo(random.bounded(layout.contentHeight()));
        const auto before = layout.visibleRows();
        const int distance = random.bounded(-2000, 2000);
        layout.scrollBy(distance);
        expectFilled(layout, context);
        // What is on the screen is laid out, and what stays on it moves as far as asked.
        for (const auto& row : layout.visibleRows()) {
            const LaidOutText& text = *row.row->layout.text;
            if (!text.isLong()) continue;
            const int top = row.top + row.row->layout.content.top();
            const qsizetype last = text.blockAt(layout.viewportHeight() - 1 - top);
            EXPECT_GT(text.firstEstimated(text.blockAt(-top)).value_or(last + 1), last);
        }
    }
    const auto before = layout.visibleRows();
    const qsizetype block = before[0].row->layout.text->blockAt(-before[0].top);
    const qint64 place = before[0].top + before[0].row->layout.text->blockTop(block);
    finish(layout);
    EXPECT_TRUE(layout.isExact(1));
    const auto& after = layout.visibleRows();
    ASSERT_EQ(after[0].index, before[0].index);
    EXPECT_EQ(after[0].top + after[0].row->layout.text->blockTop(block), place);
}

TEST(TimelineLayout, RevealShowsTheRowAndMovesNoFurtherThanNeeded) {
    const Context context;
    const auto log = shared(test::randomLog(3000, 8));
    TimelineLayout layout(log, context.rows);
    layout.reset(600, 500);
    for (const qsizetype index : {1500, 1503, 20, 2999, 0, 1}) {
        const Context& rows = context;
        const int height = layout.row(index).layout.height;
        if (height == 0) continue;
        layout.reveal(index, QRect(0, 0, 10, std::min(height, 400)));
        const qint64 top = layout.rowTop(index);
        EXPECT_GE(top, 0) << index;
        EXPECT_LE(top + std::min(height, 400), 500) << index;
        const qint64 offset = layout.offset();
        layout.reveal(index, QRect(0, 0, 10, std::min(height, 400)));
        EXPECT_EQ(layout.offset(), offset) << "moved again";
        expectFilled(layout, rows);
    }
}

TEST(TimelineLayout, EstimatesAreClose) {
    const Context context;
    const auto log = shared(test::randomLog(3000, 17));
    for (const int width : {300, 700, 2000}) {
        TimelineLayout layout(log, context.rows);
        layout.reset(width, 500);
        const qint64 exact = exactTotal(*log, context, layout.rowWidth());
        EXPECT_LT(layout.contentHeight(), 2 * exact);
        EXPECT_GT(2 * layout.contentHeight(), exact);
    }
}

TEST(ScrollMapping, EveryPlaceHasAValueAndTheEndsMeet) {
    for (const qint64 content : {qint64(0), qint64(100), qint64(5000), qint64(1) << 30,
                                 (qint64(1) << 30) + 501, qint64(1) << 31, qint64(1) << 40}) {
        const ScrollMapping mapping{content, 500};
        SCOPED_TRACE(content);
        EXPECT_EQ(mapping.toOffset(0), 0);
        EXPECT_EQ(mapping.toOffset(mapping.maximum()), mapping.lastOffset());
        EXPECT_GE(mapping.maximum(), 0);
        EXPECT_LE(mapping.maximum(), ScrollMapping::mostValues);
        EXPECT_GE(mapping.pageStep(), 1);
        for (const qint64 offset : {content / 3, content / 2, mapping.lastOffset()}) {
            if (offset > mapping.lastOffset()) continue;
            EXPECT_LT(std::abs(mapping.toOffset(mapping.toValue(offset)) - offset),
                      mapping.pixelsPerValue());
        }
    }
}

}  // namespace
}  // namespace vell
