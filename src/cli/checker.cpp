// SPDX-License-Identifier: MIT
#include "cli/checker.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <algorithm>
#include <atomic>
#include <exception>
#include <new>
#include <utility>

#include "cli/damage.h"
#include "cli/file_exporter.h"
#include "cli/in_order.h"
#include "cli/input.h"
#include "cli/job_progress.h"
#include "cli/sink.h"
#include "cli/standard_streams.h"
#include "export/message.h"
#include "foundation/plain_reason.h"
#include "foundation/print.h"
#include "library/parallel_files.h"
#include "library/transcript_probe.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

/// Of the file that the thread reads.
thread_local qint64 warnings = 0;

const char* nameOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::fine:
            return "fine";
        case Verdict::duplicate:
            return "duplicate";
        case Verdict::notATranscript:
            return "not-a-transcript";
        case Verdict::damaged:
            return "damaged";
        case Verdict::unreadable:
            return "unreadable";
    }
    return "";
}

QString counted(qint64 count, const QString& what) {
    return QString::number(count) + u' ' + (count == 1 ? what : what + u's');
}

/// What can't be read may still have been a transcript: by its name, or by what it begins with.
Verdict verdictOnUnreadable(const Input& input) {
    const QByteArrayView bytes = input.bytes.view();
    if (bytes.isEmpty())
        return hasTranscriptExtension(input.name) ? Verdict::damaged : Verdict::notATranscript;
    return beginsLikeArchive(bytes) &&
                   (hasTranscriptExtension(input.name) || looksLikeTranscript(bytes))
               ? Verdict::damaged
               : Verdict::notATranscript;
}

void check(CheckedFile& file, const Input& input, const foundation::Calendar& calendar) {
    file.hash = QCryptographicHash::hash(input.bytes.view(), QCryptographicHash::Sha256);
    try {
        warnings = 0;
        const auto log = TesselChatLog::fromData(input.bytes, input.date, calendar);
        file.verdict = Verdict::fine;
        file.detail = counted(messageCount(log), u"message"_s);
        if (warnings > 0) file.detail += u", "_s + counted(warnings, u"warning"_s);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        file.verdict = verdictOnUnreadable(input);
        file.detail = damageIn(input.bytes, error);
    }
}

CheckedFile checked(const ExportJob& job, const foundation::Calendar& calendar) {
    CheckedFile file{job, Verdict::unreadable, {}, {}};
    try {
        check(file, readInput(job.file, nullptr), calendar);
    } catch (const ReadError& error) {
        file.detail = error.reason;
    } catch (const std::exception& error) {
        file.detail = foundation::plainReason(error);
    }
    return file;
}

}  // namespace

Checker::Checker(const Options& options)
    : options_(options),
      progress_(!options.quiet && isatty(STDOUT_FILENO) == 0),
      plan_(makePlan(options, [this](qsizetype count) {
          progress_.show(u"Looking for transcripts: %1"_s.arg(count));
      })) {}

Verdict Checker::run() {
    foundation::setPrintFunction([](QStringView) { ++warnings; });
    for (const UnreadableFolder& folder : plan_.unreadable)
        print(Verdict::unreadable, folder.path, folder.reason);
    InOrder<CheckedFile> results([this](const CheckedFile& file) { take(file); });
    JobProgress progress(progress_, u"Checking"_s, plan_.jobs);
    ParallelFiles<CheckedFile, ExportJob> files(
        plan_.jobs,
        [this] {
            return [calendar = options_.calendar.withoutCache()](const ExportJob& job) {
                return checked(job, calendar);
            };
        },
        [](const CheckedFile&) { return sizeof(CheckedFile); });
    const std::atomic<bool> never = false;
    while (auto file = files.next(never)) {
        const ExportJob job = file->job;
        results.add(*std::move(file));
        progress.add(job);
    }
    progress_.clear();
    for (const ExportJob& job : plan_.jobs) {
        if (!results.has(job.number))
            results.add({job, Verdict::unreadable, u"there is not enough memory"_s, {}});
    }
    foundation::setPrintFunction({});
    return worst_;
}

/// Only of what is fine duplicates are told: of what is damaged each copy may be damaged elsewhere.
void Checker::take(CheckedFile file) {
    if (file.verdict == Verdict::fine) {
        const QString first = firstFiles_.value(file.hash);
        if (first.isNull()) {
            firstFiles_.insert(file.hash, file.job.file);
        } else {
            file.verdict = Verdict::duplicate;
            file.detail = first;
        }
    }
    print(file.verdict, file.job.file, file.detail);
}

void Checker::print(Verdict verdict, const QString& file, const QString& detail) {
    worst_ = std::max(worst_, verdict);
    if (options_.quiet && verdict == Verdict::fine) return;
    progress_.clear();
    try {
        writeOutput(QString::fromLatin1(nameOf(verdict)) + u'\t' + oneLine(displayName(file)) +
                    u'\t' + oneLine(detail) + u'\n');
    } catch (const WriteError& error) {
        throw WriteError{u"standard output: "_s + error.reason};
    }
}

}  // namespace vell
