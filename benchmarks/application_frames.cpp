// SPDX-License-Identifier: MIT
#include "application_frames.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <cstdlib>

#include "figures.h"

namespace benchmarks {
namespace {

constexpr int settling = 500;  // milliseconds, for what a program does after its first frame

/// Watches all paint events; reports and ends the process when the frame that was asked for is
/// there.
class FrameWatch final : public QObject {
  public:
    FrameWatch() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->isWidgetType()) {
            const auto* widget = static_cast<QWidget*>(object);
            if (widget->isWindow() && !isWindowPainted_) {
                isWindowPainted_ = true;
                note(window_, !wantsTimeline_);
            }
            if (wantsTimeline_ && !isTimelinePainted_ && widget->parentWidget() &&
                widget->parentWidget()->inherits("vell::TimelineView") &&
                static_cast<QAbstractScrollArea*>(widget->parentWidget())->viewport() == widget) {
                isTimelinePainted_ = true;
                note(timeline_, true);
            }
        }
        return false;
    }

  private:
    /// Takes the time once the frame has gone to the display.
    void note(double& time, bool isLast) {
        QTimer::singleShot(0, this, [this, &time, isLast] {
            time = processorMilliseconds(isLast && wantsTimeline_ ? CLOCK_PROCESS_CPUTIME_ID
                                                                  : CLOCK_THREAD_CPUTIME_ID);
            if (isLast) QTimer::singleShot(settling, this, [this] { report(); });
        });
    }
    void report() const {
        std::printf("frames %.3f %.3f %.0f\n", window_, timeline_, peakBytes() / 1024);
        std::fflush(stdout);
        std::_Exit(0);
    }

    const bool wantsTimeline_ = qgetenv(watchVariable) == QByteArray("timeline");
    bool isWindowPainted_ = false;
    bool isTimelinePainted_ = false;
    double window_ = 0;
    double timeline_ = 0;
};

void watch() {
    // The program makes a small application object first, to read its command line.
    if (qEnvironmentVariableIsSet(watchVariable) &&
        QCoreApplication::instance()->inherits("QApplication"))
        new FrameWatch;
}
Q_COREAPP_STARTUP_FUNCTION(watch)

}  // namespace

}  // namespace benchmarks
