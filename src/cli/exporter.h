#pragma once
// SPDX-License-Identifier: MIT
//
// Exporter: exports all files of a run: into a folder on all cores, into a stream one after the
// other. A failure is reported and stops no other file. What is printed comes in the order of the
// files.

#include <QStringList>
#include <vector>

#include "cli/export_plan.h"
#include "cli/export_report.h"
#include "cli/file_exporter.h"
#include "cli/job_progress.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/progress_line.h"
#include "identity/contacts/contacts_store.h"

namespace vell {

class Exporter {
  public:
    /// Looks through the folders. Throws UsageError when the contacts can't be read or the output
    /// isn't possible for these files.
    explicit Exporter(const Options& options);
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    /// Exports all files. Returns the exit status.
    int run();

  private:
    const Options& options_;
    const ContactsStore contacts_;
    ProgressLine progress_;
    ExportPlan plan_;
    Output output_;
    ExportReport report_;
    JobProgress jobProgress_;
    std::vector<IndexEntry> index_;

    [[nodiscard]] ExportPlan plan();
    template <class Result, class Job, class Work, class Take>
    void forEach(const std::vector<Job>& jobs, Work work, Take take);
    void reportFolders();
    void exportInOrder();
    void exportInParallel();
    void exportMerged();
    [[nodiscard]] std::vector<MergeJob> mergeJobs();
    void writeIndex();
    void take(const ExportedFile& file);
};

/// Runs the program: parses, exports or checks, reports. Returns the exit status.
int runExport(const QStringList& arguments);

}  // namespace vell
