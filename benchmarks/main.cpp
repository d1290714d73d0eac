// SPDX-License-Identifier: MIT
//
// Measures loading and exporting, then prints what matters: ratios between figures of this one run,
// each beside its limit. Exits with 1 when a limit is exceeded.
//
//     vell-benchmark [--benchmark_filter=REGEX …]
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conversations.h"
#include "figures.h"
#include "tasks.h"

namespace {

using benchmark::State;
using benchmarks::Form;
using benchmarks::Task;

/// The transcripts, each made when it is first asked for.
class Files {
  public:
    [[nodiscard]] QString conversation(std::size_t messages, Form form) {
        return file(QString::number(messages) + (form == Form::keyed ? "k" : "n"),
                    [&] { return benchmarks::conversation(messages, form); });
    }
    [[nodiscard]] QString pictures() {
        return file("pictures", [] { return benchmarks::pictures(500); });
    }

  private:
    template <class Make>
    QString file(const QString& name, Make make) {
        const QString path = folder_.filePath(name + ".ichat");
        QFile file(path);
        if (!file.exists() && file.open(QIODevice::WriteOnly)) file.write(make());
        return path;
    }

    const QTemporaryDir folder_;
};

/// Prints as usual and keeps the medians.
class Recorder : public benchmark::ConsoleReporter {
  public:
    Recorder() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
        ConsoleReporter::ReportRuns(runs);
    }

    /// One time through so many times another; nothing when one of them wasn't measured.
    [[nodiscard]] std::optional<double> ratio(const std::string& of, const std::string& to,
                                              double times = 1) const {
        const auto a = medians_.find(of);
        const auto b = medians_.find(to);
        if (a == medians_.end() || b == medians_.end()) return {};
        return a->second / (times * b->second);
    }

  private:
    std::map<std::string, double> medians_;
};

/// Leaves out what wasn't measured.
void reportIfMeasured(const char* what, std::optional<double> figure, double limit) {
    if (figure) benchmarks::report(what, *figure, limit);
}

/// The highest peak memory of a benchmark, in sizes of its file, and in megabytes.
std::map<std::string, double> memoryRatios;
std::map<std::string, double> memories;

struct DocumentTask {
    const char* name;
    Task task;
    double limit = 1.3;  ///< of the time, in Markdown's
};
constexpr DocumentTask documents[] = {
    {"Markdown", Task::markdown},     {"text", Task::text},
    {"HTML", Task::html, 2},          {"JSON", Task::json},
    {"JSON Lines", Task::json_lines}, {"CSV", Task::csv},
};

void add(const char* name, Task task, QString (*file)(Files&), Files& files) {
    const auto run = [=, &files](State& state) {
        const QString path = file(files);
        for (auto _ : state) {
            const auto cost = benchmarks::measure(task, path);
            if (!cost) {
                state.SkipWithError("failed");
                break;
            }
            state.SetIterationTime(cost->seconds);
            double& ratio = memoryRatios[name];
            memories[name] = std::max(memories[name], cost->peakBytes / 1e6);
            ratio = std::max(ratio, cost->peakBytes / static_cast<double>(QFile(path).size()));
        }
    };
    benchmark::RegisterBenchmark(name, run)->UseManualTime()->Iterations(1)->Unit(
        benchmark::kMillisecond);
}

void addAll(Files& files) {
    const auto keyed = [](Files& f) { return f.conversation(100'000, Form::keyed); };
    const auto pictures = [](Files& f) { return f.pictures(); };
#ifdef VELL_HAVE_LIBPLIST
    add("libplist/100000", Task::libplist, keyed, files);
#endif
    add("keyed/100000", Task::load, keyed, files);
    add(
        "keyed/1000000", Task::load,
        [](Files& f) { return f.conversation(1'000'000, Form::keyed); }, files);
    add(
        "non-keyed/100000", Task::load,
        [](Files& f) { return f.conversation(100'000, Form::nonKeyed); }, files);
    add("markdown text/100000", Task::markdown_text, keyed, files);
    for (const DocumentTask& document : documents)
        add(document.name, document.task, keyed, files);
    add("pictures/read", Task::read_file, pictures, files);
    add("pictures/load", Task::load_file, pictures, files);
}

std::optional<double> memoryRatio(const char* name) {
    const auto at = memoryRatios.find(name);
    if (at == memoryRatios.end()) return {};
    return at->second;
}

void reportDocument(const Recorder& recorder, const DocumentTask& document) {
    const std::string name = document.name;
    const std::string what = name + " of 100,000 messages: ";
    reportIfMeasured((what + "time / Markdown's").c_str(), recorder.ratio(name, "Markdown"),
                     document.limit);
    if (const auto memory = memories.find(name); memory != memories.end())
        reportIfMeasured((what + "memory, MB").c_str(), memory->second, 64);
}

int reportAll(const Recorder& recorder) {
    std::printf("\n");
    reportIfMeasured("keyed, 100,000 messages: time / libplist's",
                     recorder.ratio("keyed/100000", "libplist/100000"), 0.25);
    reportIfMeasured("non-keyed, 100,000 messages: time / libplist's",
                     recorder.ratio("non-keyed/100000", "libplist/100000"), 0.5);
    reportIfMeasured("keyed, 1,000,000 messages: time / ten times 100,000",
                     recorder.ratio("keyed/1000000", "keyed/100000", 10), 1.3);
    reportIfMeasured("Markdown of 100,000 messages: time / loading them",
                     recorder.ratio("markdown text/100000", "keyed/100000"), 1);
    for (const DocumentTask& document : documents)
        reportDocument(recorder, document);
    reportIfMeasured("500 MB of pictures: time / reading the file",
                     recorder.ratio("pictures/load", "pictures/read"), 1.3);
    reportIfMeasured("keyed, 100,000 messages: peak memory / file", memoryRatio("keyed/100000"), 4);
    reportIfMeasured("500 MB of pictures: peak memory / file", memoryRatio("pictures/load"), 1.15);
    return benchmarks::exitCode();
}

}  // namespace

int main(int argc, char** argv) {
    if (benchmarks::isTask(argc, argv)) return benchmarks::runTask(argc, argv);
    // One at a time in turn, so that whatever else the machine does meets all of them.
    std::vector<char*> arguments(argv, argv + argc);
    std::string defaults[] = {"--benchmark_repetitions=11",
                              "--benchmark_enable_random_interleaving=true",
                              "--benchmark_display_aggregates_only=true"};
    for (std::string& argument : defaults)
        arguments.insert(arguments.begin() + 1, argument.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    Files files;
    addAll(files);
    Recorder recorder;
    benchmark::RunSpecifiedBenchmarks(&recorder);
    return reportAll(recorder);
}
