#pragma once
// SPDX-License-Identifier: MIT
//
// ProgressLine: a line on the terminal that says how far a program is; elsewhere nothing. Work that
// is done soon shows none.

#include <QElapsedTimer>
#include <QString>
#include <optional>

namespace vell {

class ProgressLine {
  public:
    explicit ProgressLine(bool isWanted = true);

    void show(const QString& line);
    /// "What: 3 of 10, 0:42 left".
    void show(const QString& what, qsizetype done, qsizetype all, std::optional<int> secondsLeft);
    /// To be called before anything else is printed.
    void clear();

  private:
    const bool isShown_;
    bool isDirty_ = false;
    QElapsedTimer elapsed_;
    qint64 next_;
};

}  // namespace vell
