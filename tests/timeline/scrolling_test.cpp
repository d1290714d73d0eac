// SPDX-License-Identifier: MIT
//
// What scrolling leaves on the screen: rows that were moved are compared with rows painted anew.
// These run at several ratios, a process each.
#include <gtest/gtest.h>

#include <QBackingStore>
#include <QPaintEvent>
#include <QRandomGenerator>
#include <QScrollBar>
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

/// The viewport as painted from scratch.
QImage paintedAnew(TimelineView& view) {
    return view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The viewport as it is in the window's memory, where pixels are moved.
QImage onScreen(TimelineView& view) {
    QCoreApplication::processEvents();
    const auto* window = dynamic_cast<QImage*>(view.backingStore()->paintDevice());
    const qreal ratio = view.devicePixelRatioF();
    const QPointF corner = QPointF(view.viewport()->pos()) * ratio;
    const QSizeF size = QSizeF(view.viewport()->size()) * ratio;
    return window
        ->copy({corner.toPoint(),
                QSize(static_cast<int>(size.width()), static_cast<int>(size.height()))})
        .convertToFormat(QImage::Format_RGB32);
}

/// How much of the viewport is painted.
class PaintedPart final : public QObject {
  public:
    explicit PaintedPart(QWidget& viewport) : viewport_(viewport) {
        viewport.installEventFilter(this);
    }
    double take() {
        QCoreApplication::processEvents();
        return std::exchange(part_, 0);
    }

  private:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        for (const QRect& rect : static_cast<QPaintEvent*>(event)->region())
            part_ += 1.0 * rect.width() * rect.height() / viewport_.width() / viewport_.height();
        return false;
    }
    QWidget& viewport_;
    double part_ = 0;
};

/// But for a step of one in 255, by which blending at another line may be rounded.
void expectEqual(const QImage& moved, const QImage& anew) {
    QRect different;
    int most = 0;
    for (int y = 0; y < moved.height(); ++y) {
        for (int x = 0; x < moved.width(); ++x) {
            const QRgb a = moved.pixel(x, y);
            const QRgb b = anew.pixel(x, y);
            if (a == b) continue;
            const int difference =
                std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                          std::abs(qBlue(a) - qBlue(b))});
            most = std::max(most, difference);
            if (difference > 1) different |= QRect(x, y, 1, 1);
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
             window.view.setFindMatches(std::make_shared<const FoundSpans>(std::move(matches)),
                                        103);
         }},
        {"the ring", test::randomLog(300, 14), 100, true, Qt::LeftToRight,
         [](Window& window) { window.key(Qt::Key_Down); }},
        {"long texts", longTexts(), 0, false, Qt::LeftToRight,
         [](Window& window) {
             window.view.selectAll();
             const std::vector<TextSpan> matches{{{0, 3}, {0, 70}}, {{0, 500}, {0, 800}}};
             window.view.setFindMatches(std::make_shared<const FoundSpans>(matches), 1);
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
                if (step != 1) QCoreApplication::processEvents();
                if (step == 1 && round % 3 == 0) window.key(Qt::Key_Right, Qt::ShiftModifier);
            }
            QTest::qWait(row.start == 15 ? 40 : 0);
            expectEqual(onScreen(view), paintedAnew(view));
        }
    }
}

TEST(Scrolling, NotchPaintsWhatComesInAndNoMore) {
    for (const bool isLong : {false, true}) {
        Window window(isLong ? longTexts() : test::randomLog(300, 16));
        TimelineView& view = window.view;
        view.scroller().scrollToRow(isLong ? 0 : 100);
        wheel(view, -600);
        PaintedPart painted(*view.viewport());
        PaintedPart bar(*view.verticalScrollBar());
        static_cast<void>(painted.take());
        view.selectAll();
        EXPECT_GE(painted.take(), 1);
        for (const int points : {-60, -60, 60, 60, -60}) {
            wheel(view, points);
            EXPECT_LT(painted.take(), 0.4) << "of 640 points 60 come in";
        }
        static_cast<void>(bar.take());
        wheel(view, -1);
        EXPECT_EQ(bar.take(), 0) << "the slider looks as before";
        wheel(view, -3000);
        EXPECT_GT(bar.take(), 0);
    }
}

TEST(Scrolling, DayFloatsWhileRowsMoveAndFades) {
    LogBuilder log;
    for (int i = 0; i < 100; ++i)
        log.text(bob, QStringLiteral("line %1").arg(i));
    Window window(log.log());
    TimelineView& view = window.view;
    const QImage opened = onScreen(view);
    view.resize(view.size() + QSize(0, 1));
    view.resize(view.size() - QSize(0, 1));
    EXPECT_EQ(onScreen(view), opened) << "shown though nothing was scrolled";
    wheel(view, -1000);
    const QImage scrolled = onScreen(view);
    QTest::qWait(300);
    EXPECT_EQ(onScreen(view), scrolled) << "fades at once";
    ASSERT_TRUE(test::waitFor([&] { return onScreen(view) != scrolled; }));
    QTest::qWait(500);
    const QImage still = onScreen(view);
    QRect day;
    for (int y = 0; y < still.height(); ++y) {
        for (int x = 0; x < still.width(); ++x) {
            if (still.pixel(x, y) != scrolled.pixel(x, y)) day |= QRect(x, y, 1, 1);
        }
    }
    const qreal ratio = view.devicePixelRatioF();
    EXPECT_GE(day.width(), 100 * ratio);
    EXPECT_LE(day.bottom(), 50 * ratio);
    EXPECT_NEAR(day.center().x(), still.width() / 2, 3 * ratio);
}

TEST(Scrolling, LinesThatComeInAreNeverBlank) {
    Window window(LogBuilder().text(bob, QStringLiteral("line\n").repeated(400)).log());
    TimelineView& view = window.view;
    for (int step = 0; step < 60; ++step) {
        wheel(view, -7);
        QCoreApplication::processEvents();
    }
    const QImage image = paintedAnew(view);
    const auto& row = view.timeline().visibleRows().front();
    const RowLayout& layout = row.row->layout;
    const QPoint corner = layout.content.topLeft() + QPoint(view.timeline().rowLeft(), row.top);
    const int height = layout.text->caret(0).height();
    for (qsizetype block = 0; block < layout.text->blockCount(); ++block) {
        const QRect line(corner + QPoint(0, static_cast<int>(layout.text->blockTop(block))),
                         QSize(2 * height, height));
        if (!image.rect().contains(line)) continue;
        int darkest = 255;
        for (int y = line.top(); y <= line.bottom(); ++y) {
            for (int x = line.left(); x <= line.right(); ++x)
                darkest = std::min(darkest, qGray(image.pixel(x, y)));
        }
        EXPECT_LT(darkest, 60) << block;
    }
}

}  // namespace
}  // namespace vell
