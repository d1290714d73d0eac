#pragma once
// SPDX-License-Identifier: MIT
//
// Work that takes a while, on a thread of its own, behind a window that says how far it is. A
// cancelled one is let go at once; it ends when it next asks.
//
//     startJob(window, {tr("Export"), tr("Exporting …")}, [](const JobControl& control) {
//         while (control.progress(done, all)) …
//         return JobResult();
//     }, [](const JobResult& result) { … });

#include <QString>
#include <atomic>
#include <functional>

class QWidget;

namespace vell {

/// What the work and its window share.
class JobControl {
  public:
    /// Says how much is done; false once the work is to end. Any thread.
    bool progress(qsizetype done, qsizetype all) const {
        permille_ = all > 0 ? static_cast<int>(done * 1000 / all) : 0;
        return !isCancelled_;
    }
    [[nodiscard]] bool isCancelled() const { return isCancelled_; }
    /// Thousandths, or -1 as long as nothing is known.
    [[nodiscard]] int permille() const { return permille_; }
    void cancel() { isCancelled_ = true; }

  private:
    mutable std::atomic<int> permille_ = -1;
    std::atomic<bool> isCancelled_ = false;
};

struct JobResult {
    QString error;  ///< empty where there was none
    QString notice;
};

struct JobTexts {
    QString title;
    QString label;
};

/// Runs the work on a thread and `done` on the window's, unless the work was cancelled or the
/// window is gone.
void startJob(QWidget& window, const JobTexts& texts,
              std::function<JobResult(const JobControl&)> work,
              std::function<void(const JobResult&)> done);

}  // namespace vell
