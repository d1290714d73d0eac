#pragma once
// SPDX-License-Identifier: MIT
//
// JobProgress: how many jobs of a plan are done and how long the others will take, on the terminal.

#include <QElapsedTimer>
#include <QString>
#include <vector>

#include "cli/export_plan.h"
#include "cli/progress_line.h"

namespace vell {

class JobProgress {
  public:
    /// Begins at once. Borrows the line.
    JobProgress(ProgressLine& line, QString what, const std::vector<ExportJob>& jobs);

    /// A job that was skipped says nothing about how long others take.
    void add(const ExportJob& job, bool wasSkipped = false);

  private:
    ProgressLine& line_;
    const QString what_;
    const qsizetype all_;
    QElapsedTimer elapsed_;
    qsizetype done_ = 0;
    qint64 bytesDone_ = 0;
    qint64 bytesLeft_ = 0;
};

}  // namespace vell
