#pragma once
// SPDX-License-Identifier: MIT
//
// The window that shows the load log of a transcript that could not be opened, with the program's
// version, so that it can be sent in. Every failure gets a window of its own.

#include <QWidget>
#include <vector>

namespace vell {

struct ApplicationInfo;

/// The content's size until the user changes it.
inline constexpr QSize loadLogSize(720, 640);

/// Captures the load log now, on any thread, and opens a window with it 800 milliseconds later on
/// the window thread. Does nothing when there is no load log.
void presentLoadLogWindowIfNecessary();

/// The open load-log windows, oldest first; window thread only.
[[nodiscard]] const std::vector<QWidget*>& logWindows();

class LoadLogView final : public QWidget {
    Q_OBJECT

  public:
    /// Shows the log below a header with the version and the current time.
    LoadLogView(const ApplicationInfo& info, const QString& log);

    [[nodiscard]] QSize sizeHint() const override { return {720, 720}; }
};

}  // namespace vell
