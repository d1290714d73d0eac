// SPDX-License-Identifier: MIT
//
// Measures indexing and searching an archive of 20,000 transcripts with a million messages. Writes
// it into a temporary folder (TMPDIR; 500 MB), prints each figure beside its limit, and exits with
// 1 when one is exceeded.
//
//     vell-library-benchmark
#include <sys/resource.h>
#include <sys/stat.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <random>
#include <thread>
#include <vector>

#include "archive.h"
#include "figures.h"
#include "library/indexer.h"
#include "library/library_search.h"

namespace {

using namespace vell;
using namespace Qt::StringLiterals;
using benchmarks::processorMilliseconds;
using benchmarks::report;

constexpr int repetitions = 15;
constexpr qsizetype firstResults = 50;
constexpr double longestSearch = 30;  // milliseconds
constexpr double longestCount = 150;  // milliseconds
constexpr int stops = 20;
constexpr unsigned mostBeforeStop = 5000;  // milliseconds
constexpr double longestStop = 100;        // milliseconds

const std::atomic<bool> neverStops = false;

double childMilliseconds() {
    struct rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// Processor time of writing all transcripts as JSON to nowhere.
double exportMilliseconds(const std::vector<FoundFile>& files) {
    QByteArray list;
    for (const FoundFile& file : files)
        list += file.path + '\0';
    const double before = childMilliseconds();
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral(VELL_EXPORT), {u"-q"_s, u"-fjson"_s, u"--files0-from"_s, u"-"_s});
    process.write(list);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    return childMilliseconds() - before;
}

struct Times {
    double processor = 0;  // milliseconds
    double real = 0;
};

template <class Function>
Times timed(Function function) {
    QElapsedTimer real;
    real.start();
    const double before = processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    function();
    return {processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - before,
            static_cast<double>(real.nsecsElapsed()) / 1e6};
}

template <class Function>
double median(Function function) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i)
        times.push_back(timed(function).processor);
    return benchmarks::quantile(times, 0.5);
}

void measureIndexing(LibraryStore& store, const std::string& folder) {
    const auto files = transcriptsIn({folder}, neverStops);
    const double exported = exportMilliseconds(files);
    const Times first = timed([&] { Indexer(store).update({folder}, neverStops); });
    const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
    std::printf(
        "%zu files; JSON of all: %.0f ms; indexing: %.0f ms, %.0f ms by the clock,\n"
        "with %.0f %% of %u processors\n",
        files.size(), exported, first.processor, first.real,
        100 * first.processor / first.real / cores, cores);
    report("indexing / writing JSON, processor time", first.processor / exported, 2.5);
    const Times second = timed([&] { Indexer(store).update({folder}, neverStops); });
    report("indexing once more, nothing new", second.processor, 1000, "ms");
}

/// By the clock: from the request at some moment of indexing to the end of update().
void measureStopping(const QTemporaryDir& place, const std::string& folder) {
    std::mt19937 random(1);
    double longest = 0;
    for (int i = 0; i < stops; ++i) {
        const QString index = place.filePath(u"stopped"_s);
        LibraryStore store(QFile::encodeName(index + u"/messages.sqlite"_s));
        std::atomic<bool> stop = false;
        std::thread indexing([&] { Indexer(store).update({folder}, stop); });
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % mostBeforeStop));
        QElapsedTimer time;
        time.start();
        stop = true;
        indexing.join();
        longest = std::max(longest, static_cast<double>(time.nsecsElapsed()) / 1e6);
        QDir(index).removeRecursively();
    }
    report("stopping, the longest of twenty times", longest, longestStop, "ms");
}

void measureSize(LibraryStore& store, const QByteArray& path) {
    store.database().run("PRAGMA wal_checkpoint(TRUNCATE)");
    struct stat status {};
    ::stat(path.constData(), &status);
    const auto texts = static_cast<double>(
        store.database().value("SELECT sum(length(CAST(text AS BLOB))) FROM messages"));
    std::printf("%lld messages, %.1f MB of text\n",
                static_cast<long long>(store.database().value("SELECT count(*) FROM messages")),
                texts / 1e6);
    report("size of the database / of the texts", static_cast<double>(status.st_size) / texts, 2.5);
}

void measureSearch(LibraryStore& store, const std::string& folder) {
    struct Case {
        const char* what;
        QString query;
    };
    const Case cases[] = {
        {"a rare word", u"\"fewo\""_s},        {"a common word", u"\"the\""_s},
        {"a phrase", u"\"the i\""_s},          {"two letters of a word", u"th"_s},
        {"two Chinese characters", u"今日"_s}, {"a word of a person", u"\"the\" from:ben"_s},
    };
    for (const Case& c : cases) {
        const Query query = Query::parse(c.query);
        qsizetype found = 0;
        const double search = median([&] {
            found = 0;
            LibrarySearch(store, {{folder}, false, 0, {}}).run(query, [&found](const SearchHit&) {
                return ++found < firstResults;
            });
        });
        qint64 all = 0;
        const double count = median([&] {
            all = LibrarySearch(store, {{folder}, false, 0, {}}).count(query);
        });
        std::printf("%s: %lld messages\n", c.what, static_cast<long long>(all));
        report("  the first 50", search, longestSearch, "ms");
        report("  how many", count, longestCount, "ms");
    }
}

}  // namespace

int main() {
    const QTemporaryDir place;
    const QString chats = place.filePath(u"chats"_s);
    archive::write(chats, {});
    archive::moveSome(chats);
    const std::string folder = std::filesystem::canonical(chats.toStdString()).native();
    const QByteArray path = QFile::encodeName(place.filePath(u"index/messages.sqlite"_s));
    LibraryStore store(path);
    measureIndexing(store, folder);
    measureSize(store, path);
    measureSearch(store, folder);
    measureStopping(place, folder);
    return benchmarks::exitCode();
}
