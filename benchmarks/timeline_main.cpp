// SPDX-License-Identifier: MIT
//
// Measures the timeline window: processor time of the thread that paints, at 900 by 1000 points and
// two pixels a point. Prints each figure in milliseconds beside its limit, and as a multiple of
// moving all of the viewport's pixels once, which depends less on the machine and the day. Exits
// with 1 when a limit is exceeded. The limits are those of docs/performance.md.
//
//     vell-timeline-benchmark
#include <malloc.h>

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyleFactory>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "figures.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/timeline_view.h"
#include "timeline_logs.h"

namespace {

using benchmarks::processorMilliseconds;
using benchmarks::quantile;
using benchmarks::report;
using vell::TesselChatLog;
using vell::TimelineView;
using Log = std::shared_ptr<const TesselChatLog>;

double measured(const std::function<void()>& work) {
    const double start = processorMilliseconds();
    work();
    return processorMilliseconds() - start;
}

/// Moving a viewport's pixels by a notch, without painting anything. It is measured in turn with
/// what it is compared with: the machine's speed changes, and both find the caches as cold.
class PixelMove {
  public:
    void measure() {
        times_.push_back(measured([this] {
            std::memmove(pixels_.data(), pixels_.data() + notch * line, (lines - notch) * line);
        }));
    }
    /// The median of what was measured since this was last asked for, or the last one.
    double milliseconds() {
        if (!times_.empty()) milliseconds_ = quantile(std::exchange(times_, {}), 0.5);
        return milliseconds_;
    }

  private:
    static constexpr size_t line = size_t{1800} * 4;
    static constexpr size_t lines = 2000;
    static constexpr size_t notch = 120;
    std::vector<char> pixels_ = std::vector<char>(line * lines, 1);
    std::vector<double> times_;
    double milliseconds_ = 0;
};

PixelMove pixelMove;

void reportTime(const char* what, double time, double limit, double limitInMoves = 0) {
    benchmarks::reportTime(what, time, limit, pixelMove.milliseconds(), limitInMoves);
}

/// No animations: a wheel's notch is one frame.
class StillStyle final : public QProxyStyle {
  public:
    StillStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_Widget_Animation_Duration) return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

/// A window on a log; frame() runs until everything asked for is painted.
class Window {
  public:
    explicit Window(Log log) : view_(std::move(log), contacts_, pictures_) {
        view_.resize(900, 1000);
    }
    TimelineView& view() { return view_; }
    /// Paints what is to be painted, which must be something.
    void frame() {
        const int before = paints_.count;
        QCoreApplication::sendPostedEvents();
        if (paints_.count != before + 1) std::printf("painted %d times\n", paints_.count - before);
    }
    void open() {
        view_.show();
        view_.viewport()->installEventFilter(&paints_);
        while (paints_.count == 0)
            QCoreApplication::processEvents();
    }
    void wheel(int notches) {
        const QPointF place(400, 500);
        QWheelEvent event(place, view_.viewport()->mapToGlobal(place), QPoint(),
                          QPoint(0, 120 * notches), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(view_.viewport(), &event);
        frame();
    }
    void finishPictures() {
        do {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        } while (pictures_.isBusy());
        QCoreApplication::processEvents();
    }
    void jump(double part) {
        QScrollBar* bar = view_.verticalScrollBar();
        bar->setValue(static_cast<int>(part * bar->maximum()));
        frame();
    }

  private:
    class PaintCounter final : public QObject {
      public:
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) ++count;
            return false;
        }
    };

    PaintCounter paints_;
    vell::ContactsStore contacts_;
    vell::PictureCache pictures_;
    TimelineView view_;
};

/// Times of notches down and back up again, the same way.
struct Notches {
    std::vector<double> fresh;
    std::vector<double> known;

    Notches(Window& window, int count) {
        for (int i = 0; i < 2 * count; ++i) {
            pixelMove.measure();
            const bool isFresh = i < count;
            (isFresh ? fresh : known).push_back(measured([&] { window.wheel(isFresh ? -1 : 1); }));
        }
    }
};

void reportScrolling(Window& window) {
    const Notches notches(window, 150);
    std::printf("  scrolling; moving the pixels takes %.3f ms\n", pixelMove.milliseconds());
    reportTime("  a notch over what was seen before, median", quantile(notches.known, 0.5), 4, 2.5);
    reportTime("  a notch over what was seen before, 99 in 100", quantile(notches.known, 0.99), 8);
    reportTime("  a notch to new rows, median", quantile(notches.fresh, 0.5), 4, 3.5);
    reportTime("  a notch to new rows, 99 in 100", quantile(notches.fresh, 0.99), 8);
}

void reportJumps(Window& window) {
    const struct {
        const char* what;
        double part;
    } jumps[] = {{"  to the end", 1}, {"  to the middle", 0.5}, {"  to the start", 0}};
    for (const auto& jump : jumps) {
        std::vector<double> times;
        for (int i = 0; i < 7; ++i) {
            window.jump(0.3 + i * 0.01);
            times.push_back(measured([&] { window.jump(jump.part); }));
        }
        reportTime(jump.what, quantile(times, 0.5), 16);
    }
}

void reportChanges(Window& window) {
    std::vector<double> fonts;
    std::vector<double> widths;
    for (int i = 0; i < 7; ++i) {
        fonts.push_back(measured([&] {
            window.view().setFontSize(17 + i);
            window.frame();
        }));
        widths.push_back(measured([&] {
            window.view().resize(890 - 10 * i, 1000);
            window.frame();
        }));
    }
    window.view().setFontSize(16);
    window.view().resize(900, 1000);
    reportTime("  another font size", quantile(fonts, 0.5), 30);
    reportTime("  another width", quantile(widths, 0.5), 30);
}

/// Selecting with the mouse, and everything.
void reportSelecting(Window& window) {
    vell::TimelineView& view = window.view();
    const auto dragged = [&](QPointF to) {
        QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &move);
        QCoreApplication::sendPostedEvents();
    };
    const QPointF start(450, 300);
    QMouseEvent press(QEvent::MouseButtonPress, start, view.viewport()->mapToGlobal(start),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &press);
    window.frame();
    std::vector<double> drags;
    for (int i = 0; i < 100; ++i)
        drags.push_back(measured([&] { dragged(QPointF(i % 2 ? 100 : 800, 300 + 6 * i)); }));
    QMouseEvent release(QEvent::MouseButtonRelease, start, view.viewport()->mapToGlobal(start),
                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &release);
    reportTime("  a step of a selecting mouse, median", quantile(drags, 0.5), 4);
    reportTime("  a step of a selecting mouse, 99 in 100", quantile(drags, 0.99), 8);
    reportTime("  select all", measured([&] {
                   view.selectAll();
                   window.frame();
               }),
               16);
    const Notches notches(window, 50);
    reportTime("  a notch over what was seen before, all selected, median",
               quantile(notches.known, 0.5), 5, 3.5);
    reportTime("  a notch to new rows, all selected, median", quantile(notches.fresh, 0.5), 5, 4.5);
    reportTime("  a notch to new rows, all selected, 99 in 100", quantile(notches.fresh, 0.99), 8);
    view.clearSelection();
}

size_t allocated() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

double openingTime(const Log& log) {
    std::vector<double> times;
    for (int i = 0; i < 5; ++i) {
        std::unique_ptr<Window> window;
        times.push_back(measured([&] {
            window = std::make_unique<Window>(log);
            window->open();
        }));
    }
    return quantile(times, 0.5);
}

void finishIdlePass(Window& window) {
    while (window.view().timeline().makeExact(QDeadlineTimer(8))) {
    }
}

void measureMillion() {
    const Log few = benchmarks::plainLog(100);
    const Log many = benchmarks::plainLog(1'000'000);
    openingTime(few);  // fonts and caches of the process
    std::printf("1,000,000 events\n");
    reportTime("  first frame, more than with 100", openingTime(many) - openingTime(few), 60);

    const auto memory = [](const Log& log, bool afterIdlePass) {
        const size_t before = allocated();
        Window window(log);
        window.open();
        if (afterIdlePass) finishIdlePass(window);
        return static_cast<double>(allocated()) - static_cast<double>(before);
    };
    for (const bool isAfter : {false, true}) {
        const double bytes = (memory(many, isAfter) - memory(few, isAfter)) / 1e6;
        report(isAfter ? "  bytes an event after the idle pass" : "  bytes an event at first",
               bytes, 32);
    }
    Window window(many);
    window.open();
    window.jump(0.5);
    reportScrolling(window);
    reportJumps(window);
    reportChanges(window);
    reportSelecting(window);
}

void measureLong(const char* what, const Log& log) {
    std::printf("%s\n", what);
    const double base = openingTime(benchmarks::plainLog(100));
    reportTime("  first frame, more than with 100 short ones", openingTime(log) - base, 60);
    Window window(log);
    window.open();
    window.jump(0.4);
    reportScrolling(window);
    reportJumps(window);
    reportChanges(window);
    reportSelecting(window);
}

void measurePictures() {
    std::printf("10,000 pictures, 16 of them different, of 12 megapixels\n");
    Window window(benchmarks::pictureLog(10'000, 16));
    window.open();
    std::vector<double> decoding = Notches(window, 75).fresh;
    reportTime("  a notch while pictures are decoded, at most",
               *std::max_element(decoding.begin(), decoding.end()), 16);
    window.finishPictures();
    const Notches notches(window, 75);
    reportTime("  a notch over what was seen before, median", quantile(notches.known, 0.5), 5, 3.5);
    reportTime("  a notch to new rows, median", quantile(notches.fresh, 0.5), 5, 4.5);
    reportJumps(window);
}

void measureIdlePass() {
    std::printf("50,000 events\n");
    Window window(benchmarks::plainLog(50'000));
    window.open();
    std::vector<double> slices;
    bool hasMore = true;
    while (hasMore) {
        slices.push_back(
            measured([&] { hasMore = window.view().timeline().makeExact(QDeadlineTimer(4)); }));
    }
    reportTime("  a slice of the idle pass, 99 in 100", quantile(slices, 0.99), 8);
    std::printf("  all slices together %.0f\n", static_cast<double>(slices.size()) * 4);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "2");
    QApplication application(argc, argv);
    QApplication::setStyle(new StillStyle);
    pixelMove.measure();
    measureMillion();
    measureIdlePass();
    measureLong("one message of 100,000 lines", benchmarks::manyLines(100'000));
    measureLong("one line of 1,000,000 characters", benchmarks::oneLine(1'000'000));
    measurePictures();
    return benchmarks::exitCode();
}
