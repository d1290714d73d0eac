#pragma once
// SPDX-License-Identifier: MIT
//
// Checker: reads files without writing documents, and prints a verdict on each.

#include <QByteArray>
#include <QHash>
#include <QString>

#include "cli/export_plan.h"
#include "cli/options.h"
#include "cli/progress_line.h"

namespace vell {

/// From the best to the worst.
enum class Verdict {
    fine,
    duplicate,
    notATranscript,
    damaged,
    unreadable,
};

struct CheckedFile {
    ExportJob job;
    Verdict verdict = Verdict::unreadable;
    QString detail;
    QByteArray hash;  ///< of its bytes
};

class Checker {
  public:
    explicit Checker(const Options& options);

    /// Checks all files and returns the worst verdict. Throws WriteError when standard output
    /// fails.
    [[nodiscard]] Verdict run();

  private:
    const Options& options_;
    ProgressLine progress_;
    const ExportPlan plan_;
    QHash<QByteArray, QString> firstFiles_;  // by hash
    Verdict worst_ = Verdict::fine;

    void take(CheckedFile file);
    void print(Verdict verdict, const QString& file, const QString& detail);
};

}  // namespace vell
