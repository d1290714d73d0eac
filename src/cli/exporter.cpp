// SPDX-License-Identifier: MIT
#include "cli/exporter.h"

#include <unistd.h>

#include <atomic>
#include <memory>
#include <utility>

#include "cli/checker.h"
#include "cli/in_order.h"
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
constexpr int exitRecovered = 3;
constexpr int exitDuplicate = 3;
constexpr int exitNotATranscript = 4;
constexpr int exitDamaged = 5;

int exitStatus(Verdict worst) {
    switch (worst) {
        case Verdict::fine:
            return exitSuccess;
        case Verdict::duplicate:
            return exitDuplicate;
        case Verdict::notATranscript:
            return exitNotATranscript;
        case Verdict::damaged:
            return exitDamaged;
        case Verdict::unreadable:
            break;
    }
    return exitFailure;
}

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
      report_(options.report),
      jobProgress_(progress_, u"Exporting"_s, plan_.jobs) {
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

int Exporter::run() {
    reportFolders();
    if (output_.isStream() || plan_.jobs.size() < 2)
        exportInOrder();
    else
        exportInParallel();
    progress_.clear();
    report_.finish();
    if ((plan_.hasFolders || options_.update) && !options_.quiet) writeError(report_.table());
    if (report_.hasFailures()) return exitFailure;
    return report_.hasRecovered() ? exitRecovered : exitSuccess;
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
        const ExportedFile file = exporter.run(job);
        take(file);
        jobProgress_.add(job, file.result.kind == ExportResult::Kind::skipped);
    }
}

void Exporter::exportInParallel() {
    InOrder<ExportedFile> results([this](const ExportedFile& file) { take(file); });
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
        jobProgress_.add(file->job, file->result.kind == ExportResult::Kind::skipped);
        results.add(*std::move(file));
    }
    // A thread that runs out of memory loses its results.
    for (const ExportJob& job : plan_.jobs) {
        if (!results.has(job.number))
            results.add({job, {.reason = u"there is not enough memory"_s}, {}});
    }
}

void Exporter::take(const ExportedFile& file) {
    report_.add(file.job, file.result);
    if (file.diagnostics.isEmpty()) return;
    progress_.clear();
    writeError(file.diagnostics);
}

int runExport(const QStringList& arguments) {
    // Standard output is for documents.
    foundation::setPrintTarget(stderr);
    console::setDefaultConsole(std::make_shared<Console2<>>(
        FileOutputStream(stderr), FileOutputStream(stderr), LogLevel::defaultLevel()));
    try {
        const Options options = parseOptions(arguments);
        if (options.checks) return exitStatus(Checker(options).run());
        return Exporter(options).run();
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
