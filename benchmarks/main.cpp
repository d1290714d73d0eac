// SPDX-License-Identifier: MIT
//
// Measures loading and exporting, then prints what matters: ratios between figures of this one run,
// each beside its limit. Exits with 1 when a limit is passed.
//
//     vell-benchmark [--benchmark_filter=REGEX …]
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conversations.h"
#include "identity/contacts_store.h"
#include "memory.h"
#include "transcript/chat_log.h"

#ifdef VELL_HAVE_LIBPLIST
#include <plist/plist.h>
#endif

namespace {

using benchmark::State;
using benchmarks::Form;
using vell::TesselChatLog;

constexpr std::size_t kPictureMegabytes = 500;

const QByteArray& bytesOf(std::size_t messages, Form form) {
    static std::map<std::pair<std::size_t, Form>, QByteArray> made;
    const auto [at, isNew] = made.try_emplace({messages, form});
    if (isNew) at->second = benchmarks::conversation(messages, form);
    return at->second;
}

/// A file with these bytes in a folder that goes with the program.
QString fileHolding(const char* name, const QByteArray& bytes) {
    static const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) return {};
    return path;
}

const QString& pictureFile() {
    static const QString path =
        fileHolding("pictures.ichat", benchmarks::pictures(kPictureMegabytes));
    return path;
}

const foundation::Calendar& calendar() {
    static const foundation::Calendar berlin(QTimeZone("Europe/Berlin"));
    return berlin;
}

void load(State& state, std::size_t messages, Form form) {
    const foundation::Data data(bytesOf(messages, form));
    for (auto _ : state) {
        std::optional<TesselChatLog> log = TesselChatLog::fromData(data, std::nullopt, calendar());
        state.PauseTiming();  // whoever opens a file keeps it: freeing isn't loading
        if (log->events().size() < messages) state.SkipWithError("not all was read");
        log.reset();
        state.ResumeTiming();
    }
}

#ifdef VELL_HAVE_LIBPLIST
void parseWithLibplist(State& state, std::size_t messages) {
    const QByteArray& bytes = bytesOf(messages, Form::keyed);
    for (auto _ : state) {
        plist_t list = nullptr;
        plist_from_bin(bytes.constData(), static_cast<std::uint32_t>(bytes.size()), &list);
        state.PauseTiming();
        if (!list) state.SkipWithError("not parsed");
        plist_free(list);
        state.ResumeTiming();
    }
}
#endif

void exportMarkdown(State& state, std::size_t messages) {
    const TesselChatLog log = TesselChatLog::fromData(
        foundation::Data(bytesOf(messages, Form::keyed)), std::nullopt, calendar());
    const vell::ContactsStore contacts;
    for (auto _ : state)
        benchmark::DoNotOptimize(log.generatePlainText(contacts));
}

void readPictures(State& state) {
    for (auto _ : state) {
        QFile file(pictureFile());
        if (!file.open(QIODevice::ReadOnly)) state.SkipWithError("not readable");
        const QByteArray bytes = file.readAll();
        benchmark::DoNotOptimize(bytes.constData());
    }
}

void loadPictures(State& state) {
    for (auto _ : state) {
        const TesselChatLog log = TesselChatLog::fromFile(pictureFile(), calendar());
        if (log.events().size() < kPictureMegabytes) state.SkipWithError("not all was read");
    }
}

void registerAll() {
    const auto add = [](const char* name, auto function) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond)->Iterations(1);
    };
#ifdef VELL_HAVE_LIBPLIST
    add("libplist/100000", [](State& state) { parseWithLibplist(state, 100'000); });
#endif
    add("keyed/100000", [](State& state) { load(state, 100'000, Form::keyed); });
    add("keyed/1000000", [](State& state) { load(state, 1'000'000, Form::keyed); });
    add("non-keyed/100000", [](State& state) { load(state, 100'000, Form::nonKeyed); });
    add("markdown/100000", [](State& state) { exportMarkdown(state, 100'000); });
    add("pictures/read", readPictures);
    add("pictures/load", loadPictures);
}

/// Prints as usual and keeps the processor time of every repetition.
class Recorder : public benchmark::ConsoleReporter {
  public:
    Recorder() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
        ConsoleReporter::ReportRuns(runs);
    }

    /// The median of one time through so many times that of another; nothing when one of them
    /// wasn't measured.
    [[nodiscard]] std::optional<double> ratio(const std::string& of, const std::string& to,
                                              double times = 1) {
        if (times_[of].empty() || times_[to].empty()) return {};
        return median(times_[of]) / (times * median(times_[to]));
    }

  private:
    static double median(std::vector<double> times) {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

    std::map<std::string, std::vector<double>> times_;
};

class Verdict {
  public:
    void add(const char* what, std::optional<double> figure, double limit) {
        if (!figure) return;
        const bool isMet = *figure <= limit;
        failed_ |= !isMet;
        std::printf("%-58s %7.3f  limit %5.2f  %s\n", what, *figure, limit,
                    isMet ? "met" : "PASSED");
    }
    [[nodiscard]] int exitCode() const { return failed_ ? 1 : 0; }

  private:
    bool failed_ = false;
};

/// Peak memory of a process that loads the file, in sizes of the file.
std::optional<double> memoryRatio(const QString& path) {
    const auto peak = benchmarks::peakMemory(path);
    if (!peak) return {};
    return *peak / static_cast<double>(QFile(path).size());
}

int report(Recorder& recorder, bool withMemory) {
    Verdict verdict;
    std::printf("\n");
    verdict.add("keyed, 100,000 messages: time / libplist's",
                recorder.ratio("keyed/100000", "libplist/100000"), 0.25);
    verdict.add("non-keyed, 100,000 messages: time / libplist's",
                recorder.ratio("non-keyed/100000", "libplist/100000"), 0.5);
    verdict.add("keyed, 1,000,000 messages: time / ten times 100,000",
                recorder.ratio("keyed/1000000", "keyed/100000", 10), 1.3);
    verdict.add("Markdown of 100,000 messages: time / loading them",
                recorder.ratio("markdown/100000", "keyed/100000"), 1);
    verdict.add("500 MB of pictures: time / reading the file",
                recorder.ratio("pictures/load", "pictures/read"), 1.3);
    if (withMemory) {
        const QString keyed = fileHolding("keyed.ichat", bytesOf(100'000, Form::keyed));
        verdict.add("keyed, 100,000 messages: peak memory / file", memoryRatio(keyed), 4);
        verdict.add("500 MB of pictures: peak memory / file", memoryRatio(pictureFile()), 1.15);
    }
    return verdict.exitCode();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--peak-memory")
        return benchmarks::printPeakMemory(argv[2]);
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
    registerAll();
    Recorder recorder;
    benchmark::RunSpecifiedBenchmarks(&recorder);
    return report(recorder, argc == 1);
}
