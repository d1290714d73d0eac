// SPDX-License-Identifier: MIT
//
// What scrolling leaves on the screen: rows that were moved are compared with rows painted anew.
// These run at several ratios, a process each.
#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QWheelEvent>

#include "identity/waiting.h"
#include "timeline/gif.h"
#include "timeline/random_log.h"
#include "timeline/window.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::me;
using test::Window;

TesselChatLog longTexts() {
    LogBuilder log;
    QString lines;
    for (int i = 0; i < 3000; ++i)
        lines +=
            QStringLiteral("Énorme: line %1\n").arg(i) + QStringLiteral("wraps ").repeated(i % 20);
    log.text(bob, lines).text(me, QStringLiteral("between")).text({}, lines);
    return log.text(me, QStringLiteral("word ").repeated(20'000)).log();
}

TesselChatLog playing() {
    LogBuilder log;
    const foundation::Data gif(test::gif(QSize(61, 40), {Qt::red, Qt::blue}, 3));
    for (int i = 0; i < 20; ++i)
        log.text(i % 3 ? me : bob, QStringLiteral("some words ").repeated(i % 7));
    log.add(bob, TesselChatLog::Image{foundation::recognisePicture(gif).value(),
                                      gif,
                                      QStringLiteral("com.compuserve.gif"),
                                      {}});
    for (int i = 0; i < 60; ++i)
        log.text(i % 3 ? me : bob, QStringLiteral("some words ").repeated(i % 7));
    return log.log();
}

/// Pixels, so that no frames are spread over time.
void wheel(TimelineView& view, int points) {
    const QPointF place(100, 100);
    QWheelEvent event(place, view.viewport()->mapToGlobal(place), QPoint(0, points), QPoint(),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

QImage seen(TimelineView& view) {
    return view.viewport()->grab().toImage();
}

/// After a change of the height nothing that was painted serves any more.
QImage paintedAnew(TimelineView& view) {
    const QSize size = view.size();
    view.resize(size - QSize(0, 1));
    view.resize(size);
    return seen(view);
}

void expectEqual(const QImage& moved, const QImage& anew) {
    ASSERT_EQ(moved.size(), anew.size());
    QRect different;
    int most = 0;
    for (int y = 0; y < anew.height(); ++y) {
        for (int x = 0; x < anew.width(); ++x) {
            if (moved.pixel(x, y) == anew.pixel(x, y)) continue;
            different |= QRect(x, y, 1, 1);
            most = std::max(most, std::abs(qGray(moved.pixel(x, y)) - qGray(anew.pixel(x, y))));
        }
    }
    EXPECT_TRUE(different.isEmpty())
        << different.x() << ", " << different.y() << " " << different.width() << " x "
        << different.height() << ", differing by " << most;
}

TEST(Scrolling, MovedRowsAreThoseThatArePaintedAnew) {
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    const struct {
        const char* what;
        TesselChatLog log;
        qsizetype start = 0;
        bool isDark = false;
        Qt::LayoutDirection direction = Qt::LeftToRight;
        void (*prepare)(Window&) = [](Window&) {};
    } cases[] = {
        {"all kinds of rows", test::randomLog(300, 11), 100},
        {"dark, right to left", test::randomLog(300, 12), 100, true, Qt::RightToLeft},
        {"selected and matched", test::randomLog(300, 13), 100, false, Qt::LeftToRight,
         [](Window& window) {
             std::vector<TextSpan> matches;
             for (qsizetype row = 0; row < 300; ++row)
                 matches.push_back({{row, 1}, {row, 4}});
             window.view.selectAll();
             window.view.setFindMatches(std::move(matches), 103);
         }},
        {"the ring", test::randomLog(300, 14), 100, true, Qt::LeftToRight,
         [](Window& window) { window.key(Qt::Key_Down); }},
        {"long texts", longTexts(), 0, false, Qt::LeftToRight,
         [](Window& window) {
             window.view.selectAll();
             window.view.setFindMatches({{{0, 3}, {0, 70}}, {{0, 500}, {0, 800}}}, 1);
         }},
        {"a GIF", playing(), 15, false, Qt::LeftToRight,
         [](Window& window) { window.view.activateRow(20); }},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        Window window(row.log);
        TimelineView& view = window.view;
        if (row.isDark) view.setPalette(dark);
        view.setLayoutDirection(row.direction);
        view.resize(431, 501);
        view.scroller().scrollToRow(row.start);
        row.prepare(window);
        QRandomGenerator random(5);
        for (int round = 0; round < 12 && !testing::Test::HasFailure(); ++round) {
            for (int step = 0; step < 4; ++step) {
                if (step == 3) {
                    view.scroller().scrollByPixels(random.bounded(-9, 10));  // device pixels
                } else {
                    wheel(view, round == 7 ? 4000 : random.bounded(20, 140) * (round % 4 ? -1 : 1));
                }
                QCoreApplication::processEvents();
                if (step == 1 && round % 3 == 0) window.key(Qt::Key_Right, Qt::ShiftModifier);
                static_cast<void>(seen(view));
            }
            QTest::qWait(row.start == 15 ? 40 : 0);
            const QImage moved = seen(view);
            expectEqual(moved, paintedAnew(view));
            // So that there are moved rows again.
            wheel(view, -3);
            static_cast<void>(seen(view));
        }
    }
}

}  // namespace
}  // namespace vell
