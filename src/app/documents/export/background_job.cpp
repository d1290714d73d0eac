// SPDX-License-Identifier: MIT
#include "app/documents/export/background_job.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QProgressDialog>
#include <QSemaphore>
#include <QTimerEvent>
#include <memory>
#include <utility>

#include "foundation/guarded.h"
#include "toolkit/callback_guard.h"

namespace vell {
namespace {

constexpr int progressInterval = 100;  // milliseconds
constexpr int patience = 500;          // before the window appears
constexpr int farewell = 1000;         // for the job of a window that closes, to clean up

class Job final : public QProgressDialog {
  public:
    Job(QWidget& window, const JobTexts& texts, std::function<void(const JobResult&)> done)
        : QProgressDialog(&window),
          done_(std::move(done)),
          control_(std::make_shared<JobControl>()),
          callbacks_(std::make_shared<CallbackGuard>(this)) {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(texts.title);
        setLabelText(texts.label);
        setWindowModality(Qt::WindowModal);
        setAutoReset(false);
        setRange(0, 0);
        setMinimumDuration(patience);
        connect(this, &QProgressDialog::canceled, this, [this] {
            control_->cancel();
            close();
        });
        timer_.start(progressInterval, this);
    }
    ~Job() override {
        callbacks_->close();
        if (control_->isCancelled()) return;
        control_->cancel();
        ended_->tryAcquire(1, farewell);
    }

    void run(std::function<JobResult(const JobControl&)> work) {
        const auto end = [this, callbacks = callbacks_](const JobResult& result) {
            callbacks->post([this, result] { finish(result); });
        };
        const auto fail = [ended = ended_, end] {
            ended->release();
            end({QCoreApplication::translate("Export", "There is not enough memory"), {}});
        };
        foundation::runDetached(
            [work = std::move(work), control = control_, ended = ended_, end] {
                const JobResult result = work(*control);
                ended->release();
                end(result);
            },
            fail);
    }

  protected:
    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() != timer_.timerId()) {
            QProgressDialog::timerEvent(event);
            return;
        }
        if (control_->permille() < 0) return;
        if (maximum() == 0) setRange(0, 1000);
        setValue(control_->permille());
    }

  private:
    void finish(const JobResult& result) {
        const auto done = std::move(done_);
        const bool isCancelled = control_->isCancelled();
        close();
        if (!isCancelled) done(result);
    }

    std::function<void(const JobResult&)> done_;
    std::shared_ptr<JobControl> control_;
    std::shared_ptr<CallbackGuard> callbacks_;
    std::shared_ptr<QSemaphore> ended_ = std::make_shared<QSemaphore>();
    QBasicTimer timer_;
};

}  // namespace

void startJob(QWidget& window, const JobTexts& texts,
              std::function<JobResult(const JobControl&)> work,
              std::function<void(const JobResult&)> done) {
    auto* job = new Job(window, texts, std::move(done));
    job->run(std::move(work));
}

}  // namespace vell
