// SPDX-License-Identifier: MIT
#include "tasks.h"

#include <QFile>
#include <QProcess>
#include <QTimeZone>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>

#include "export/format.h"
#include "export/markdown.h"
#include "figures.h"
#include "identity/contacts/contacts_store.h"
#include "transcript/chat_log.h"

#ifdef VELL_HAVE_LIBPLIST
#include <plist/plist.h>
#endif

namespace benchmarks {
namespace {

using vell::TesselChatLog;

constexpr char taskOption[] = "--task";

class Stopwatch {
  public:
    [[nodiscard]] double seconds() const { return now() - start_; }

  private:
    static double now() {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }
    double start_ = now();
};

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

// Each returns the seconds it took, less than 0 when it failed. What it made is kept until then:
// freeing isn't part of the work.

double parseWithLibplist([[maybe_unused]] const QByteArray& bytes) {
#ifdef VELL_HAVE_LIBPLIST
    plist_t list = nullptr;
    const Stopwatch stopwatch;
    plist_from_bin(bytes.constData(), static_cast<std::uint32_t>(bytes.size()), &list);
    return list ? stopwatch.seconds() : -1;
#else
    return -1;
#endif
}

double load(const QByteArray& bytes, const foundation::Calendar& calendar, bool withMarkdown) {
    const Stopwatch loading;
    const auto log = TesselChatLog::fromData(foundation::Data(bytes), std::nullopt, calendar);
    if (!withMarkdown) return loading.seconds();
    const vell::ContactsStore contacts;
    const Stopwatch exporting;
    return generatePlainText(log, contacts).isEmpty() ? -1 : exporting.seconds();
}

/// From the file to a document, as for people; `memory` becomes what the writing took.
double write(Task task, const QString& path, const foundation::Calendar& calendar, double& memory) {
    const Stopwatch stopwatch;
    const auto log = TesselChatLog::fromFile(path, calendar);
    const vell::ContactsStore contacts;
    const vell::FormatContext context(calendar, "C", contacts);
    const auto index = static_cast<std::size_t>(task) - static_cast<std::size_t>(Task::markdown);
    forgetPeak();
    const double before = peakBytes();
    vell::formats()[index].write({.log = log, .context = context, .file = path},
                                 [](QByteArrayView) {});
    const double seconds = stopwatch.seconds();
    memory = peakBytes() - before;
    return seconds;
}

double readFile(const QString& path) {
    const Stopwatch stopwatch;
    return bytesOf(path).isEmpty() ? -1 : stopwatch.seconds();
}

double loadFile(const QString& path, const foundation::Calendar& calendar) {
    const Stopwatch stopwatch;
    const auto log = TesselChatLog::fromFile(path, calendar);
    return log.events().empty() ? -1 : stopwatch.seconds();
}

double run(Task task, const QString& path, double& memory) {
    const foundation::Calendar calendar(QTimeZone("Europe/Berlin"));
    switch (task) {
        case Task::libplist:
            return parseWithLibplist(bytesOf(path));
        case Task::load:
        case Task::markdown_text:
            return load(bytesOf(path), calendar, task == Task::markdown_text);
        case Task::read_file:
            return readFile(path);
        case Task::load_file:
            return loadFile(path, calendar);
        case Task::markdown:
        case Task::text:
        case Task::html:
        case Task::json:
        case Task::json_lines:
        case Task::csv:
            return write(task, path, calendar, memory);
    }
    return -1;
}

}  // namespace

bool isTask(int argc, char** argv) {
    return argc == 4 && std::strcmp(argv[1], taskOption) == 0;
}

int runTask(int, char** argv) {
    try {
        const auto task = static_cast<Task>(QByteArray(argv[2]).toInt());
        double memory = 0;
        const double seconds = run(task, QFile::decodeName(argv[3]), memory);
        std::printf("%.9f %.0f\n", seconds, memory > 0 ? memory : peakBytes());
        return seconds < 0 ? 1 : 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

std::optional<Cost> measure(Task task, const QString& path) {
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QStringLiteral("/proc/self/exe"),
                {QString::fromLatin1(taskOption), QString::number(static_cast<int>(task)), path});
    if (!child.waitForFinished(-1) || child.exitStatus() != QProcess::NormalExit ||
        child.exitCode() != 0)
        return {};
    const QList<QByteArray> answer = child.readAllStandardOutput().trimmed().split(' ');
    if (answer.size() != 2) return {};
    return Cost{answer[0].toDouble(), answer[1].toDouble()};
}

}  // namespace benchmarks
