// SPDX-License-Identifier: MIT
#include "cli/exporter.h"

#include <unistd.h>

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

#include "cli/standard_streams.h"
#include "foundation/print.h"
#include "library/parallel_files.h"
#include "toolkit/console.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
constexpr qint64 guessAfter = 1000;  // milliseconds

int printInformation(const Information& information) {
    try {
        writeOutput(information.text);
        return exitSuccess;
    } catch (const WriteError& error) {
        writeError(u"vell-export: standard output: "_s + error.reason + u'\n');
        return exitFailure;
    }
}

/// A line amid documents that go to the terminal too would be in their way.
bool sharesTerminal(const Options& options) {
    return options.output == u"-" && isatty(STDOUT_FILENO) != 0;
}

}  // namespace

Exporter::Exporter(const Options& options)
    : options_(options),
      contacts_(contactsIn(options.contacts)),
      progress_(!options.quiet && !sharesTerminal(options)),
      plan_(plan()),
      output_(options, plan_),
      report_(options.report) {
    for (const ExportJob& job : plan_.jobs)
        bytesLeft_ += job.size;
    foundation::setPrintFunction([this](QStringView line) {
        if (!FileExporter::addDiagnostic(line) && !options_.quiet)
            writeError(line.toString() + u'\n');
    });
}

Exporter::~Exporter() {
    foundation::setPrintFunction({});
}

ExportPlan Exporter::plan() {
    ExportPlan plan = makePlan(options_, [this](qsizetype count) {
        progress_.show(u"Looking for transcripts: %1"_s.arg(count));
    });
    progress_.clear();
    return plan;
}

bool Exporter::run() {
    reportFolders();
    elapsed_.start();
    if (output_.isStream() || plan_.jobs.size() < 2)
        exportInOrder();
    else
        exportInParallel();
    progress_.clear();
    report_.finish();
    if ((plan_.hasFolders || options_.update) && !options_.quiet) writeError(report_.table());
    return !report_.hasFailures();
}

void Exporter::reportFolders() {
    for (const UnreadableFolder& folder : plan_.unreadable) {
        report_.add(folder);
        writeError(oneLine(u"vell-export: "_s + folder.path + u": "_s + folder.reason) + u'\n');
    }
}

void Exporter::exportInOrder() {
    FileExporter exporter(options_, contacts_, output_, plan_.isForSeveral());
    for (const ExportJob& job : plan_.jobs) {
        if (output_.isBroken()) break;
        showProgress();
        take(exporter.run(job));
    }
}

void Exporter::exportInParallel() {
    ParallelFiles<ExportedFile, ExportJob> files(
        plan_.jobs,
        [this] {
            return [exporter = std::make_shared<FileExporter>(
                        options_, contacts_, output_, plan_.isForSeveral())](const ExportJob& job) {
                return exporter->run(job);
            };
        },
        [](const ExportedFile& file) {
            return static_cast<std::size_t>(file.diagnostics.size()) * sizeof(QChar);
        });
    const std::atomic<bool> never = false;
    while (auto file = files.next(never)) {
        take(*std::move(file));
        showProgress();
    }
    // What a thread had begun when it ran out of memory has no result.
    for (std::size_t number = next_; number < plan_.jobs.size(); ++number) {
        if (!waiting_.contains(number))
            take({plan_.jobs[number], {.reason = u"there is not enough memory"_s}, {}});
    }
}

void Exporter::take(ExportedFile file) {
    ++done_;
    bytesLeft_ -= file.job.size;
    if (file.result.kind != ExportResult::Kind::skipped) bytesDone_ += file.job.size;
    waiting_.emplace(file.job.number, std::move(file));
    while (!waiting_.empty() && waiting_.begin()->first == next_) {
        finish(waiting_.begin()->second);
        waiting_.erase(waiting_.begin());
        ++next_;
    }
}

void Exporter::finish(const ExportedFile& file) {
    report_.add(file.job, file.result);
    if (file.diagnostics.isEmpty()) return;
    progress_.clear();
    writeError(file.diagnostics);
}

void Exporter::showProgress() {
    std::optional<int> left;
    const qint64 elapsed = elapsed_.elapsed();
    if (elapsed > guessAfter && bytesDone_ > 0)
        left = static_cast<int>(static_cast<double>(elapsed) / 1000 *
                                static_cast<double>(bytesLeft_) / static_cast<double>(bytesDone_));
    progress_.show(u"Exporting"_s, done_, std::ssize(plan_.jobs), left);
}

int runExport(const QStringList& arguments) {
    // Standard output is for documents.
    foundation::setPrintTarget(stderr);
    console::setDefaultConsole(std::make_shared<Console2<>>(
        FileOutputStream(stderr), FileOutputStream(stderr), LogLevel::defaultLevel()));
    try {
        const Options options = parseOptions(arguments);
        return Exporter(options).run() ? exitSuccess : exitFailure;
    } catch (const Information& information) {
        return printInformation(information);
    } catch (const WriteError& error) {
        writeError(u"vell-export: "_s + oneLine(error.reason) + u'\n');
        return exitFailure;
    } catch (const UsageError& error) {
        writeError(u"vell-export: "_s + oneLine(error.reason) +
                   u"\nTry 'vell-export --help' for more.\n"_s);
        return exitUsage;
    }
}

}  // namespace vell
