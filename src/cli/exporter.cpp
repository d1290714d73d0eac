// SPDX-License-Identifier: MIT
#include "cli/exporter.h"

#include <unistd.h>

#include <QFileInfo>
#include <atomic>
#include <map>
#include <memory>
#include <utility>

#include "cli/checker.h"
#include "cli/in_order.h"
#include "cli/standard_streams.h"
#include "foundation/print.h"
#include "library/parallel_files.h"
#include "toolkit/console.h"
#include "toolkit/safe_file_name.h"

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
      jobProgress_(progress_, options.merges ? u"Reading"_s : u"Exporting"_s, plan_.jobs) {
    if (options.index && !options.force && !options.update &&
        QFileInfo::exists(output_.indexPath()))
        throw WriteError{output_.indexPath() + u": the file exists (--force replaces it)"_s};
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
    if (options_.merges)
        exportMerged();
    else if (output_.isStream() || plan_.jobs.size() < 2)
        exportInOrder();
    else
        exportInParallel();
    progress_.clear();
    if (options_.index) writeIndex();
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

/// Does the work on all cores; each thread has an exporter.
template <class Result, class Job, class Work, class Take>
void Exporter::forEach(const std::vector<Job>& jobs, Work work, Take take) {
    ParallelFiles<Result, Job> files(
        jobs,
        [this, work] {
            return [work, exporter = std::make_shared<FileExporter>(
                              options_, contacts_, output_, plan_.isForSeveral())](const Job& job) {
                return work(*exporter, job);
            };
        },
        [](const Result&) { return sizeof(Result); });
    const std::atomic<bool> never = false;
    while (auto result = files.next(never))
        take(*std::move(result));
}

void Exporter::exportInParallel() {
    InOrder<ExportedFile> results([this](const ExportedFile& file) { take(file); });
    forEach<ExportedFile>(
        plan_.jobs, [](FileExporter& exporter, const ExportJob& job) { return exporter.run(job); },
        [&](ExportedFile file) {
            jobProgress_.add(file.job, file.result.kind == ExportResult::Kind::skipped);
            results.add(std::move(file));
        });
    // A thread that runs out of memory loses its results.
    for (const ExportJob& job : plan_.jobs) {
        if (!results.has(job.number))
            results.add({.job = job, .result = {.reason = u"there is not enough memory"_s}});
    }
}

void Exporter::exportMerged() {
    const std::vector<MergeJob> jobs = mergeJobs();
    qsizetype done = 0;
    InOrder<MergedFiles> results([this](const MergedFiles& merged) {
        for (const ExportedFile& document : merged.documents)
            take(document);
    });
    forEach<MergedFiles>(
        jobs, [](FileExporter& exporter, const MergeJob& job) { return exporter.merge(job); },
        [&](MergedFiles merged) {
            results.add(std::move(merged));
            progress_.show(u"Writing people"_s, ++done, std::ssize(jobs), {});
        });
    for (const MergeJob& job : jobs) {
        if (results.has(job.number)) continue;
        ExportedFile lost{.job = {.file = job.names},
                          .result = {.reason = u"there is not enough memory"_s}};
        results.add({job, {std::move(lost)}});
    }
}

/// Reads all files to learn whom they are with; reports those that can't be read.
std::vector<MergeJob> Exporter::mergeJobs() {
    std::map<QString, MergeJob> byKey;
    InOrder<ExportedFile> results([&](const ExportedFile& file) {
        if (!file.indexEntry) return take(file);
        progress_.clear();
        if (!file.diagnostics.isEmpty()) writeError(file.diagnostics);
        MergeJob& job = byKey[file.indexEntry->partners.key];
        job.names = file.indexEntry->partners.names;
        job.files.push_back(file.job);
    });
    forEach<ExportedFile>(
        plan_.jobs,
        [](FileExporter& exporter, const ExportJob& job) { return exporter.identify(job); },
        [&](ExportedFile file) {
            jobProgress_.add(file.job);
            results.add(std::move(file));
        });
    for (const ExportJob& job : plan_.jobs) {
        if (!results.has(job.number))
            results.add({.job = job, .result = {.reason = u"there is not enough memory"_s}});
    }
    std::vector<MergeJob> jobs;
    OutputNames names;
    for (auto& [key, job] : byKey) {
        job.number = jobs.size();
        job.folder = names.unique(safeFileName(job.names, u"Nobody"_s));
        jobs.push_back(std::move(job));
    }
    return jobs;
}

void Exporter::writeIndex() {
    const FormatContext context(options_.calendar, options_.dateLocale, contacts_);
    const ExportJob job{.file = {}, .document = output_.indexPath()};
    output_.write(job, {.name = {}, .bytes = {}, .date = {}, .permissions = plan_.permissions},
                  [&](Sink& sink) {
                      writeArchiveIndex(std::move(index_), context,
                                        [&sink](QByteArrayView bytes) { sink.write(bytes); });
                  });
}

void Exporter::take(const ExportedFile& file) {
    report_.add(file.job, file.result);
    if (file.indexEntry) index_.push_back(*file.indexEntry);
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
