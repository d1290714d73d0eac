// SPDX-License-Identifier: MIT
#include "cli/job_progress.h"

#include <optional>
#include <utility>

namespace vell {
namespace {

constexpr qint64 guessAfter = 1000;  // milliseconds

}  // namespace

JobProgress::JobProgress(ProgressLine& line, QString what, const std::vector<ExportJob>& jobs)
    : line_(line), what_(std::move(what)), all_(std::ssize(jobs)) {
    for (const ExportJob& job : jobs)
        bytesLeft_ += job.size;
    elapsed_.start();
}

void JobProgress::add(const ExportJob& job, bool wasSkipped) {
    ++done_;
    bytesLeft_ -= job.size;
    if (!wasSkipped) bytesDone_ += job.size;
    std::optional<int> left;
    const qint64 elapsed = elapsed_.elapsed();
    if (elapsed > guessAfter && bytesDone_ > 0)
        left = static_cast<int>(static_cast<double>(elapsed) / 1000 *
                                static_cast<double>(bytesLeft_) / static_cast<double>(bytesDone_));
    line_.show(what_, done_, all_, left);
}

}  // namespace vell
